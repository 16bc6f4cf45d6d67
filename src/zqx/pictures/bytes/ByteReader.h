// Reads numbers and text from untrusted files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// Thrown if a file ends too early or does not contain the expected bytes, or if more was read than any real header
/// has.
struct NoMoreBytes {};

/// Reads the headers of a file: numbers in either byte order and text, sequentially from any offset.
///
/// Seeking beyond the end is noticed only when something is read there. The total number of bytes loaded is limited, so
/// that a hostile file takes no more time than a large header.
class ByteReader {
public:
    enum class Order { LITTLE, BIG };

    /// More than any real header has.
    static constexpr std::uint64_t HEADER_LIMIT = std::uint64_t{16} << 20U;

    /// @param limit on the total number of bytes loaded
    explicit ByteReader(InputFile& file, Order order = Order::BIG, std::uint64_t limit = HEADER_LIMIT)
        : mFile(file), mOrder(order), mLimit(limit) {}

    std::uint64_t place() const { return mPlace; }
    void seek(std::uint64_t place) { mPlace = place; }
    /// Moves on; saturates instead of overflowing.
    void skip(std::uint64_t count);

    Order order() const { return mOrder; }
    void setOrder(Order order) { mOrder = order; }

    /// An unsigned number of 1 to 8 bytes. @throws NoMoreBytes
    std::uint64_t number(std::size_t size) { return mOrder == Order::BIG ? big(size) : little(size); }
    std::uint64_t big(std::size_t size);
    std::uint64_t little(std::size_t size);

    /// A number of bytes. @throws NoMoreBytes
    std::string text(std::size_t size);
    /// Up to a number of bytes, without moving on.
    std::string peek(std::size_t size);
    /// A zero-terminated text; the zero is skipped. @throws NoMoreBytes also if the text is longer than the limit
    std::string textUpToZero(std::size_t limit);

    /// Skips bytes that must be there. @throws NoMoreBytes if there are others
    void expect(std::string_view bytes);

private:
    unsigned char next();
    void load();

    InputFile& mFile;
    Order mOrder;
    std::uint64_t mPlace = 0;
    std::string mWindow;
    std::uint64_t mWindowPlace = 0;
    std::uint64_t mLimit;
    std::uint64_t mLoaded = 0;
};

} // namespace zqx::pictures
