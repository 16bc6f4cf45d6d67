// Links the library of tools: inverts a black picture by a parameter's name, and counts its values.
#include <cstdio>
#include <exception>
#include <memory>

#include <zqx/tools/Histogram.h>
#include <zqx/tools/ParameterDocuments.h>

int main() {
    using zqx::img::Image;
    unsigned char black[3][5 * 3] = {};
    try {
        zqx::img::ImageProcessingPipeline pipeline = zqx::tools::readParameters({}, {"invert=true"});
        pipeline.setActiveStages(static_cast<int>(pipeline.ALL_STAGES));
        pipeline.setInputImage(std::make_shared<Image>(black, 5, 3, Image::SRGB8, 0));
        Image inverted(5, 3, Image::SRGB8, 1);
        pipeline.execute(inverted);
        const zqx::tools::Histogram counts = zqx::tools::countValues(inverted);
        std::printf("%s of all pixels are white\n",
                    zqx::tools::percentage(counts.channels[counts.LUMA].highlights(), counts.pixels).c_str());
        return counts.pixels == 15 && counts.channels[counts.LUMA].highlights() == 15 ? 0 : 1;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "%s\n", problem.what());
        return 1;
    }
}
