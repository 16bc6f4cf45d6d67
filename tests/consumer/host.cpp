// Links the runtime alone and meets the library as a module, through interfaces: inverts one pixel.
#include <cstdio>
#include <string>

#include <tov/Module.h>
#include <tov/TovRef.h>
#include <zqx/img/IImageProcessingPipeline.h>
#include <zqx/qfreeimage/IFreeImage.h>

namespace {

using tov::TovRef;
using zqx::img::IImageProcessingPipeline;
using zqx::qfreeimage::IFreeImage;

constexpr const char* BITMAP_CLASS = "f92bd073-5780-4bcf-843c-f375c20b9455";
constexpr const char* PIPELINE_CLASS = "5388994d-6d2a-486f-a4cc-161e246cc725";
constexpr int STANDARD_BITMAP = 1; // FIT_BITMAP: bytes

bool invertsBlackToWhite(tov::Module& module) {
    const TovRef<IFreeImage> black = module.create<IFreeImage>(BITMAP_CLASS);
    const TovRef<IImageProcessingPipeline> pipeline = module.create<IImageProcessingPipeline>(PIPELINE_CLASS);
    if (!black || !pipeline) {
        std::fprintf(stderr, "the module does not make its components\n");
        return false;
    }
    TovRef<IFreeImage> white;
    if (tov::failed(black->allocate(STANDARD_BITMAP, 1, 1, 24)) || tov::failed(pipeline->setInputImage(black.get())) ||
        tov::failed(pipeline->setInversionEnabled(1)) || tov::failed(pipeline->execute(white.receive()))) {
        std::fprintf(stderr, "the pipeline fails\n");
        return false;
    }
    float red = 0.0F;
    float green = 0.0F;
    float blue = 0.0F;
    float alpha = 0.0F;
    white->getPixelF(0, 0, &red, &green, &blue, &alpha);
    std::printf("black inverted: %g %g %g\n", static_cast<double>(red), static_cast<double>(green),
                static_cast<double>(blue));
    return red == 1.0F && green == 1.0F && blue == 1.0F;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s MODULE\n", argv[0]);
        return 2;
    }
    std::string error;
    tov::Module module = tov::Module::load(argv[1], &error);
    if (!module.isLoaded()) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    return invertsBlackToWhite(module) ? 0 : 1;
}
