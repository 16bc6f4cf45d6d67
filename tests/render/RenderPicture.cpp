// The pictures of the sample render.
#include "RenderPicture.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>

#include <FreeImage.h>

namespace zqx::img::test {

RenderPicture readRender(const std::string& file) {
    const std::string path = std::string(ZQX_RENDER) + '/' + file;
    const std::unique_ptr<FIBITMAP, decltype(&FreeImage_Unload)> bitmap(FreeImage_Load(FIF_EXR, path.c_str()),
                                                                        &FreeImage_Unload);
    if (!bitmap || FreeImage_GetImageType(bitmap.get()) != FIT_RGBF) {
        throw std::runtime_error("no picture of three floats a pixel: " + path);
    }
    RenderPicture picture{FreeImage_GetWidth(bitmap.get()), FreeImage_GetHeight(bitmap.get()), {}};
    const std::size_t floatsPerRow = picture.width * 3;
    for (std::size_t y = picture.height; y-- > 0;) { // FreeImage counts rows from the bottom
        const auto* row = reinterpret_cast<const float*>(FreeImage_GetScanLine(bitmap.get(), static_cast<int>(y)));
        picture.values.insert(picture.values.end(), row, row + floatsPerRow);
    }
    return picture;
}

RenderPicture blackLike(const RenderPicture& picture) {
    return {picture.width, picture.height, std::vector<float>(picture.values.size(), 0.0F)};
}

RenderPicture toneMapped(const RenderPicture& picture) {
    RenderPicture shown = picture;
    std::ranges::transform(picture.values, shown.values.begin(),
                           [](float value) { return std::pow(std::clamp(value, 0.0F, 1.0F), 1.0F / 2.2F); });
    return shown;
}

double signalToNoise(const RenderPicture& picture, const RenderPicture& reference) {
    if (picture.width != reference.width || picture.height != reference.height) {
        throw std::invalid_argument("pictures of different sizes");
    }
    double squares = 0;
    for (std::size_t i = 0; i < reference.values.size(); ++i) {
        const double difference = static_cast<double>(picture.values[i]) - reference.values[i];
        squares += difference * difference;
    }
    return -10 * std::log10(squares / static_cast<double>(reference.values.size()));
}

} // namespace zqx::img::test
