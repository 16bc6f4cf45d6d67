// Numbers out of files, of which nothing is believed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// Thrown where a file has no such bytes, or where more of them were read than any honest header has.
struct NoMoreBytes {};

/// Reads the headers of a file: numbers of either byte order and text, one after the other from any place.
///
/// Going to a place beyond the end shows when something is read there. What is loaded from the file in all is limited,
/// so that a hostile one costs no more time than a large header.
class ByteReader {
public:
    enum class Order { LITTLE, BIG };

    /// More than any header has.
    static constexpr std::uint64_t HEADER_LIMIT = std::uint64_t{16} << 20U;

    /// @param limit of the bytes that are loaded in all
    explicit ByteReader(InputFile& file, Order order = Order::BIG, std::uint64_t limit = HEADER_LIMIT)
        : mFile(file), mOrder(order), mLimit(limit) {}

    std::uint64_t place() const { return mPlace; }
    void seek(std::uint64_t place) { mPlace = place; }
    /// Sums that no file reaches end at the largest number.
    void skip(std::uint64_t count);

    Order order() const { return mOrder; }
    void setOrder(Order order) { mOrder = order; }

    /// An unsigned number of 1 to 8 bytes. @throws NoMoreBytes
    std::uint64_t number(std::size_t size) { return mOrder == Order::BIG ? big(size) : little(size); }
    std::uint64_t big(std::size_t size);
    std::uint64_t little(std::size_t size);

    /// As many bytes. @throws NoMoreBytes
    std::string text(std::size_t size);
    /// Up to so many bytes, without moving on.
    std::string peek(std::size_t size);
    /// The bytes before the next zero, which is passed over. @throws NoMoreBytes also where they are more than the
    /// limit
    std::string textUpToZero(std::size_t limit);

    /// Passes over these bytes. @throws NoMoreBytes where there are others
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
