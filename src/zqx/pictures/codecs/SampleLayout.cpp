// The table of sample layouts, and the substitutes for layouts that a file format cannot store.
#include "zqx/pictures/SampleLayout.h"

#include <span>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

namespace {

struct LayoutInfo {
    SampleLayout working;
    img::Image::Format format; // in memory
    int bitsPerChannel;
    std::size_t channels;
    const char* name;
};

const LayoutInfo& getInfo(SampleLayout layout) {
    using enum SampleLayout;
    static constexpr LayoutInfo INFOS[SAMPLE_LAYOUT_COUNT] = {
        {GRAY8, img::Image::SGRAY8, 8, 1, "8-bit grey"},
        {RGB8, img::Image::SBGR8, 8, 3, "8-bit colour"},
        {RGBA8, img::Image::SBGRA8, 8, 4, "8-bit colour with alpha"},
        {GRAY32F, img::Image::GRAY32F, 32, 1, "float grey"},
        {RGB32F, img::Image::RGB32F, 32, 3, "float colour"},
        {RGBA32F, img::Image::RGBA32F, 32, 4, "float colour with alpha"},
        {GRAY32F, img::Image::GRAY32F, 16, 1, "16-bit grey"},
        {RGB32F, img::Image::RGB32F, 16, 3, "16-bit colour"},
        {RGBA32F, img::Image::RGBA32F, 16, 4, "16-bit colour with alpha"},
        {RGB8, img::Image::SBGR8, 8, 3, "a palette of 256 colours"},
    };
    return INFOS[static_cast<std::size_t>(layout)];
}

/// Which layouts to write in place of one that a file format may not support, least loss first.
std::span<const SampleLayout> preferences(SampleLayout wanted) {
    using enum SampleLayout;
    static constexpr SampleLayout FOR_GRAY8[] = {GRAY8, RGB8, GRAY32F, RGB32F};
    static constexpr SampleLayout FOR_RGB8[] = {RGB8, RGBA8, RGB32F, PALETTE8};
    static constexpr SampleLayout FOR_RGBA8[] = {RGBA8, RGBA32F, RGB8, RGB32F, PALETTE8};
    static constexpr SampleLayout FOR_GRAY16[] = {GRAY16, RGB16, GRAY32F, RGB32F, GRAY8, RGB8};
    static constexpr SampleLayout FOR_RGB16[] = {RGB16, RGBA16, RGB32F, RGB8, RGBA8, PALETTE8};
    static constexpr SampleLayout FOR_RGBA16[] = {RGBA16, RGBA32F, RGBA8, RGB16, RGB32F, RGB8, PALETTE8};
    static constexpr SampleLayout FOR_GRAY32F[] = {GRAY32F, RGB32F, GRAY16, RGB16, GRAY8, RGB8};
    static constexpr SampleLayout FOR_RGB32F[] = {RGB32F, RGBA32F, RGB16, RGBA16, RGB8, RGBA8, PALETTE8};
    static constexpr SampleLayout FOR_RGBA32F[] = {RGBA32F, RGBA16, RGBA8, RGB32F, RGB16, RGB8, PALETTE8};
    switch (wanted) {
    case GRAY8: return FOR_GRAY8;
    case RGBA8: return FOR_RGBA8;
    case GRAY16: return FOR_GRAY16;
    case RGB16: return FOR_RGB16;
    case RGBA16: return FOR_RGBA16;
    case GRAY32F: return FOR_GRAY32F;
    case RGB32F: return FOR_RGB32F;
    case RGBA32F: return FOR_RGBA32F;
    case RGB8:
    case PALETTE8: break;
    }
    return FOR_RGB8;
}

} // namespace

SampleLayout workingLayout(SampleLayout layout) {
    return getInfo(layout).working;
}
img::Image::Format workingFormat(SampleLayout layout) {
    return getInfo(layout).format;
}
bool hasColor(SampleLayout layout) {
    return getInfo(layout).channels > 1;
}
bool hasAlpha(SampleLayout layout) {
    return getInfo(layout).channels == 4;
}
bool isFloat(SampleLayout layout) {
    return getInfo(layout).bitsPerChannel == 32;
}
std::size_t channelCount(SampleLayout layout) {
    return getInfo(layout).channels;
}
int bitsPerChannel(SampleLayout layout) {
    return getInfo(layout).bitsPerChannel;
}
const char* getName(SampleLayout layout) {
    return getInfo(layout).name;
}

SampleLayout getLayout(const img::Image& image) {
    switch (image.getFormat()) {
    case img::Image::GRAY8:
    case img::Image::SGRAY8: return SampleLayout::GRAY8;
    case img::Image::RGBA8:
    case img::Image::SRGBA8:
    case img::Image::SBGRA8: return SampleLayout::RGBA8;
    case img::Image::GRAY32F: return SampleLayout::GRAY32F;
    case img::Image::RGB32F: return SampleLayout::RGB32F;
    case img::Image::RGBA32F: return SampleLayout::RGBA32F;
    default: return SampleLayout::RGB8;
    }
}

SampleLayout chooseLayout(const std::string& name, FileFormat format, SampleLayout wanted) {
    for (const SampleLayout layout : preferences(wanted)) {
        if (holds(format, layout)) {
            return layout;
        }
    }
    throw Error(name, std::string(getName(format)) + " files cannot store " + getName(wanted) +
                          "; choose another extension such as .png or .tif");
}

} // namespace zqx::pictures
