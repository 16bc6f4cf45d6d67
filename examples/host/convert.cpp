// Loads a picture through the bitmap component and saves it in another format: what a host needs for files, with
// interfaces alone.
#include <cstdio>
#include <cstring>
#include <string>

#include <tov/Module.h>
#include <tov/TovRef.h>
#include <zqx/qfreeimage/Formats.h>
#include <zqx/qfreeimage/IFreeImage.h>

namespace {

using tov::TovRef;
using zqx::qfreeimage::IFreeImage;
namespace formats = zqx::qfreeimage;

constexpr const char* BITMAP_CLASS = "f92bd073-5780-4bcf-843c-f375c20b9455";

/// A format, what asks for it, and how it is saved here.
struct Target {
    const char* name;
    int format;
    int flags;
};

constexpr Target TARGETS[] = {
    {"png", formats::FORMAT_PNG, formats::SAVE_PNG_SMALLEST},
    {"jpeg", formats::FORMAT_JPEG, formats::SAVE_JPEG_GOOD | formats::SAVE_JPEG_PROGRESSIVE},
    {"tiff", formats::FORMAT_TIFF, formats::SAVE_TIFF_LZW},
};

const Target* findTarget(const char* name) {
    for (const Target& target : TARGETS) {
        if (std::strcmp(target.name, name) == 0) {
            return &target;
        }
    }
    return nullptr;
}

bool succeeded(tov::Result result, const char* what, const char* file) {
    if (tov::failed(result)) {
        std::fprintf(stderr, "%s: %s failed with code 0x%08X\n", file, what, result);
    }
    return !tov::failed(result);
}

/// Bytes without alpha, which every format of the list holds.
bool convert(const tov::Module& module, const char* input, const char* output, const Target& target) {
    const TovRef<IFreeImage> picture = module.create<IFreeImage>(BITMAP_CLASS);
    if (!picture) {
        std::fprintf(stderr, "the module does not make bitmaps\n");
        return false;
    }
    TovRef<IFreeImage> bytes; // what is handed out is ours, and given back by the reference
    return succeeded(picture->load(formats::FORMAT_DETECT, input, formats::LOAD_JPEG_TURNED), "loading", input) &&
           succeeded(picture->convertTo24Bits(bytes.receive()), "converting", input) &&
           succeeded(bytes->save(target.format, output, target.flags), "saving", output);
}

} // namespace

int main(int argc, char** argv) {
    const Target* target = argc == 5 ? findTarget(argv[4]) : nullptr;
    if (target == nullptr) {
        std::fprintf(stderr, "usage: %s MODULE INPUT OUTPUT png|jpeg|tiff\n", argv[0]);
        return 2;
    }
    std::string error;
    const tov::Module module = tov::Module::load(argv[1], &error);
    if (!module.isLoaded()) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    return convert(module, argv[2], argv[3], *target) ? 0 : 1;
}
