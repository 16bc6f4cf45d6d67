// Finds and loads the drawing module. If it were linked, every start of the program would load some twenty libraries,
// which takes longer than most commands.
#include "drawing/Drawing.h"

#include <algorithm>
#include <system_error>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include "drawing/module/Module.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/isolation/ProgramPath.h"

#define ZQX_TEXT(name) #name
#define ZQX_TEXT_OF(macro) ZQX_TEXT(macro)

namespace zqx::app {

using namespace pictures;

namespace {

namespace fs = std::filesystem;

constexpr const char* ENTRY = ZQX_TEXT_OF(ZQX_DRAWING_ENTRY);

#if defined(_WIN32)

void* load(const fs::path& name, std::string& reason) {
    const HMODULE module = LoadLibraryExW(name.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (module == nullptr) {
        reason = std::system_category().message(static_cast<int>(GetLastError()));
    }
    return module;
}

void* addressIn(void* module) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), ENTRY));
}

#else

void* load(const fs::path& name, std::string& reason) {
    void* module = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
        reason = dlerror();
    }
    return module;
}

void* addressIn(void* module) {
    return dlsym(module, ENTRY);
}

#endif

/// Beside the program, as in a build folder, or where it is installed to.
fs::path findModule() {
    const fs::path here = programDirectory();
    std::error_code failure;
    const fs::path beside = here / ZQX_DRAWING_FILE;
    return fs::exists(beside, failure) ? beside : (here / ZQX_DRAWING_PLACE / ZQX_DRAWING_FILE).lexically_normal();
}

const drawing::Functions& bind() {
    const fs::path name = findModule();
    std::string reason;
    void* module = load(name, reason); // never unloaded: the libraries behind it do not support that
    if (module == nullptr) {
        throw Error(name.string(), "the drawing module cannot be loaded (" + reason + "); reinstall the program");
    }
    auto* entry = reinterpret_cast<drawing::GetFunctions*>(addressIn(module));
    if (entry == nullptr) {
        throw Error(name.string(), "belongs to another version of the program; reinstall both");
    }
    return *entry();
}

const drawing::Functions& functions() {
    static const drawing::Functions& bound = bind();
    return bound;
}

} // namespace

Drawing::Drawing(unsigned width, unsigned height, const Ink& background)
    : mWidth(width), mHeight(height), mPixels(std::size_t{width} * height),
      mCanvas(functions().makeCanvas(mPixels.data(), static_cast<int>(width), static_cast<int>(height))) {
    mCanvas->fillRectangle({0.0, 0.0}, width, height, background);
}

void Drawing::copyTo(img::Image& image, unsigned x, unsigned y) const {
    const std::uint32_t* from = mPixels.data();
    for (unsigned row = 0; row < mHeight; ++row) {
        auto* to = static_cast<unsigned char*>(image.getPixelPtr(x, y + row));
        for (unsigned column = 0; column < mWidth; ++column, ++from) {
            for (const unsigned shift : {0U, 8U, 16U}) { // blue, green, red
                *to++ = static_cast<unsigned char>(*from >> shift & 0xFFU);
            }
        }
    }
}

std::string encodeForTerminal(const TerminalPicture& picture) {
    return functions().encodeForTerminal(picture);
}

} // namespace zqx::app
