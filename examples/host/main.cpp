// A host: knows the module by its path, two interfaces and the runtime's headers, and nothing of the library's classes.
// Grades a photograph into another file and writes a small preview beside it.
#include <cstdio>
#include <string>

#include <tov/Module.h>
#include <tov/TovRef.h>
#include <zqx/img/IImageProcessingPipeline.h>
#include <zqx/qfreeimage/Formats.h>
#include <zqx/qfreeimage/IFreeImage.h>

namespace {

using tov::TovRef;
using zqx::img::EColorGradingParams;
using zqx::img::IImageProcessingPipeline;
using zqx::qfreeimage::IFreeImage;

constexpr const char* BITMAP_CLASS = "f92bd073-5780-4bcf-843c-f375c20b9455";
constexpr const char* PIPELINE_CLASS = "5388994d-6d2a-486f-a4cc-161e246cc725";

bool succeeded(tov::Result result, const char* what) {
    if (tov::failed(result)) {
        std::fprintf(stderr, "%s failed with code 0x%08X\n", what, result);
    }
    return !tov::failed(result);
}

/// Cooler light and a little more punch.
bool setLook(IImageProcessingPipeline& pipeline) {
    EColorGradingParams params;
    if (!succeeded(pipeline.getDefaultColorGradingParams(&params), "reading the defaults")) {
        return false;
    }
    params.exposure = 0.3F;
    params.contrast = 0.54F;
    params.temperature = 4300.0F;
    return succeeded(pipeline.setColorGradingParams(params), "setting the look") &&
           succeeded(pipeline.setSharpness(0.1F), "setting the sharpness");
}

bool saveBitmap(const TovRef<IFreeImage>& bitmap, const std::string& path) {
    int width = 0;
    int height = 0;
    bitmap->getWidth(&width);
    bitmap->getHeight(&height);
    std::printf("%s: %d x %d\n", path.c_str(), width, height);
    return succeeded(bitmap->save(zqx::qfreeimage::FORMAT_PNG, path.c_str(), 0), "saving");
}

bool run(tov::Module& module, const char* input, const std::string& output) {
    const TovRef<IFreeImage> photograph = module.create<IFreeImage>(BITMAP_CLASS);
    const TovRef<IImageProcessingPipeline> pipeline = module.create<IImageProcessingPipeline>(PIPELINE_CLASS);
    if (!photograph || !pipeline) {
        std::fprintf(stderr, "the module does not make its components\n");
        return false;
    }
    if (!succeeded(photograph->load(zqx::qfreeimage::FORMAT_DETECT, input, 0), "loading") ||
        !succeeded(pipeline->setInputImage(photograph.get()), "setting the input") || !setLook(*pipeline)) {
        return false;
    }
    TovRef<IFreeImage> graded;
    TovRef<IFreeImage> preview;
    return succeeded(pipeline->execute(graded.receive()), "grading") && saveBitmap(graded, output) &&
           succeeded(pipeline->executePreview(150, 100, preview.receive()), "the preview") &&
           saveBitmap(preview, output + ".preview.png");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s MODULE INPUT OUTPUT.png\n", argv[0]);
        return 2;
    }
    std::string error;
    tov::Module module = tov::Module::load(argv[1], &error);
    if (!module.isLoaded()) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    return run(module, argv[2], argv[3]) ? 0 : 1;
}
