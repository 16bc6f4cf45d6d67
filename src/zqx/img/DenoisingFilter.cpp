#include <zqx/img/DenoisingFilter.h>

#include <memory>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "kernels/samples/Channels.h"
#include "system/OpenImageDenoise.h"

namespace zqx::img {

namespace {

constexpr int MEMORY_BUDGET_MB = 1500;

/// What all denoising filters of the process share.
class Denoiser {
public:
    /// Made at the first use, which alone is safe from several threads.
    static Denoiser& instance() {
        static Denoiser denoiser;
        return denoiser;
    }

    bool wasSetUp() const { return mSetupAttempted; }
    bool isAvailable() const { return mDevice != nullptr; }

    /// @return false and a message when there is no denoiser; there will be none in this process then
    bool setUp(std::string& error);

    /// @return false and the library's message when it reports an error
    bool run(const Image& color, const Image& albedo, const Image& normal, const Image& output, bool hdr,
             std::string& error);

private:
    template <typename Handle>
    using Holder = std::unique_ptr<std::remove_pointer_t<Handle>, void (*)(Handle)>;

    /// Loads the library while this object is being made, so that at the end of the process its own static objects
    /// outlive the handles.
    Denoiser() : mLibrary(OpenImageDenoise::load(mLoadError)) {}

    bool hasFailed(std::string& error) const;

    std::string mLoadError;
    std::optional<OpenImageDenoise> mLibrary;
    Holder<OpenImageDenoise::Device> mDevice{nullptr, nullptr};
    Holder<OpenImageDenoise::Filter> mFilter{nullptr, nullptr};
    bool mSetupAttempted = false;
};

bool Denoiser::setUp(std::string& error) {
    mSetupAttempted = true;
    if (!mLibrary) {
        error = mLoadError;
        return false;
    }
    mDevice = {mLibrary->makeDevice(), mLibrary->releaseDevice};
    if (mDevice) {
        mFilter = {mLibrary->newFilter(mDevice.get(), "RT"), mLibrary->releaseFilter};
        mLibrary->setFilterInt(mFilter.get(), "maxMemoryMB", MEMORY_BUDGET_MB);
    }
    std::string message;
    if (hasFailed(message) || !mDevice || !mFilter) {
        error = message;
        mDevice.reset();
        mFilter.reset();
        return false;
    }
    return true;
}

bool Denoiser::run(const Image& color, const Image& albedo, const Image& normal, const Image& output, bool hdr,
                   std::string& error) {
    const OpenImageDenoise::Filter filter = mFilter.get();
    const std::pair<const char*, const Image&> images[] = {
        {"color", color}, {"albedo", albedo}, {"normal", normal}, {"output", output}};
    for (const auto& [name, image] : images) {
        mLibrary->setSharedFilterImage(filter, name, image.getDataPtr(), OpenImageDenoise::FORMAT_FLOAT3,
                                       color.getWidth(), color.getHeight(), 0, image.getBytePixelStride(),
                                       image.getByteRowStride());
    }
    mLibrary->setFilterBool(filter, "hdr", hdr);
    mLibrary->setFilterBool(filter, "srgb", !hdr);
    mLibrary->commitFilter(filter);
    mLibrary->executeFilter(filter);
    return !hasFailed(error);
}

/// Asks for the error of the last calls, which clears it; the text belongs to the library.
bool Denoiser::hasFailed(std::string& error) const {
    const char* message = nullptr;
    if (mLibrary->getDeviceError(mDevice.get(), &message) == OpenImageDenoise::ERROR_NONE) {
        error.clear();
        return false;
    }
    error = message != nullptr ? message : "";
    return true;
}

} // namespace

bool DenoisingFilter::execute() {
    Denoiser& denoiser = Denoiser::instance();
    if (!denoiser.wasSetUp() && !denoiser.setUp(mErrorMessage)) {
        return false;
    }
    if (!denoiser.isAvailable()) {
        mErrorMessage = "Denoiser not available.";
        return false;
    }
    const Image& color = mInputs[COLOR];
    const Image& albedo = mInputs[ALBEDO];
    const Image& normal = mInputs[NORMAL];
    for (const Image* image : {&color, &albedo, &normal, &std::as_const(mOutImage)}) {
        if (image->getDataPtr() == nullptr) {
            mErrorMessage = "Invalid Input";
            return false;
        }
    }
    std::string message;
    if (!denoiser.run(color, albedo, normal, mOutImage, mHDR, message)) {
        mErrorMessage = message;
        return false;
    }
    return true;
}

bool denoiseImage(float* color, float* albedo, float* normal, std::size_t width, std::size_t height, bool hdr,
                  std::string& error) {
    static std::vector<float> input;
    static std::vector<float> output;
    const std::size_t floats = width * height * 3;
    if (input.size() != floats) {
        output.resize(floats); // first: the size of the input says that both are ready
        input.resize(floats);
    }
    const Image pixels(color, width, height, Image::RGBA32F, 0);
    const Image noisy(color != nullptr ? input.data() : nullptr, width, height, Image::RGB32F, 0);
    const Image denoised(output.data(), width, height, Image::RGB32F, 0);
    kernels::copyColor(pixels, noisy);

    DenoisingFilter filter;
    filter.setInput(DenoisingFilter::COLOR, noisy);
    filter.setInput(DenoisingFilter::ALBEDO, Image(albedo, width, height, Image::RGB32F, 0));
    filter.setInput(DenoisingFilter::NORMAL, Image(normal, width, height, Image::RGB32F, 0));
    filter.setOutput(denoised);
    filter.setHDR(hdr);
    if (!filter.execute()) {
        error = filter.getErrorMessage();
        return false;
    }
    kernels::copyColor(denoised, pixels);
    return true;
}

} // namespace zqx::img
