// What a filter that works in linear floats reads, works on and writes, whatever the formats.
#pragma once

#include <memory>
#include <optional>

#include <zqx/img/Image.h>

#include "kernels/samples/Codec.h"
#include "kernels/samples/Samples.h"

namespace zqx::img::kernels {

inline bool haveSameSize(const Image& a, const Image& b) {
    return a.getWidth() == b.getWidth() && a.getHeight() == b.getHeight();
}

/// How the filter looks at pixels.
enum class Treatment {
    OF_PIXELS,   ///< channels have a meaning
    OF_CHANNELS, ///< all channels are treated alike: rows may be taken for single samples
};

/// Reads a source as the channels that a filter works on, and writes those to its output, by the conversions of the
/// image model. A float output decides the channels, otherwise the source does.
class FilterWork {
public:
    /// For images of one size; none when there is nothing to do, for unknown formats.
    /// Where the two share memory in different layouts, the source is copied.
    /// @throws std::bad_alloc
    static std::optional<FilterWork> between(const Image& source, const Image& output, Treatment treatment);

    /// Planes that are worked on: 1, 3 or 4.
    std::size_t planes() const { return pixelFormat(mChannels).elementCount(); }
    std::size_t width() const { return mRow.width; }
    std::size_t height() const { return mOutput.getHeight(); }
    /// Distance of neighbours in a row; more than 1 where the row is one of samples.
    std::size_t step() const { return mRow.step; }
    /// Whether writing a pixel of the output loses the same pixel of the source.
    bool isInPlace() const { return mIsInPlace; }

    /// Fills the planes of the channels.
    void read(std::size_t y, std::size_t first, std::size_t length, Run& run) const;
    /// Leaves the planes of the run changed.
    void write(std::size_t y, std::size_t first, std::size_t length, Run& run) const;

private:
    FilterWork(std::shared_ptr<Image> source, const Image& output, Format channels, Treatment treatment);

    std::shared_ptr<Image> mSource;
    Image mOutput;
    RowLayout mRow;
    Format mChannels; // GRAY32F, RGB32F or RGBA32F
    bool mIsInPlace;
    RunReader mReader;
    RunWriter mWriter;
};

} // namespace zqx::img::kernels
