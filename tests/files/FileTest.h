// Tests with a directory of their own and files of known pixels in it.
#pragma once

#include <FreeImage.h>

#include <qutil/Streams.h>
#include <support/DirectoryTest.h>
#include <support/Process.h>

#include "Component.h"
#include "OtherPrograms.h"
#include "PixelCopy.h"

namespace zqx::img::test {

class FileTest : public DirectoryTest {
protected:
    /// A small PNG of bytes, written by the other program.
    std::string samplePng(const std::string& name = "sample.png") const {
        writeWithMagick(paint(Content::MOTLEY, 3, Depth::BYTE), "PNG24:" + at(name));
        return at(name);
    }

    static tov::TovRef<qutil::MemoryInputStream> memoryStream(const std::string& bytes) {
        return qutil::MemoryInputStream::create(bytes.data(), bytes.size());
    }
};

/// PFM has its rows from the bottom; FreeImage 3.18 reads and writes them from the top, so that it agrees with itself
/// alone.
inline constexpr bool PFM_UPSIDE_DOWN = true;

/// Names the cases of a parameterised test by their own names.
struct CaseName {
    template <typename Case>
    std::string operator()(const ::testing::TestParamInfo<Case>& info) const {
        return info.param.name;
    }
};

/// Cases are told by their names in messages, too.
template <typename Case>
requires requires(const Case& value) {
    value.name;
}
void PrintTo(const Case& value, std::ostream* out) {
    *out << value.name;
}

/// Whether a component says that it holds no bitmap.
inline bool isEmpty(IFreeImage& component) {
    int width = 0;
    return component.getWidth(&width) == tov::NOT_READY;
}

} // namespace zqx::img::test
