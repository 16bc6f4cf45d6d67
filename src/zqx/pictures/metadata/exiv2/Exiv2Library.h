// Exiv2 made ready for several threads, and what differs between its versions. Only for the sources about metadata.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <exiv2/exiv2.hpp>

namespace zqx::pictures {

#if EXIV2_TEST_VERSION(0, 28, 0)
using Exiv2Size = std::size_t;
#else
using Exiv2Size = long;
#endif

/// To be called before anything else of Exiv2: silences it and lets its XMP toolkit know of threads. Any number of
/// times, by any thread.
void prepareExiv2();

/// Forgets what Exiv2 complained of on this thread.
void forgetComplaints();

/// True when Exiv2 could make nothing of a kind of metadata ("Exif", "IPTC", "XMP") on this thread.
bool hasComplaint(std::string_view kind);

/// An exception's words, without line breaks and without what a terminal would obey.
std::string getMessage(const std::exception& failure);

/// A number of a tag; 0 where it has none.
long long getNumber(const Exiv2::Exifdatum& tag);

std::vector<unsigned char> getBytes(const Exiv2::DataBuf& buffer);

/// The colour profile of a picture that was read; empty where it has none.
std::vector<unsigned char> getProfile(Exiv2::Image& image);

struct ExifBlock {
    Exiv2::ExifData tags;
    Exiv2::ByteOrder byteOrder = Exiv2::littleEndian;
};

/// @throws Exiv2's exceptions
ExifBlock decodeExif(const std::vector<unsigned char>& block);
std::vector<unsigned char> encodeExif(const Exiv2::ExifData& tags, Exiv2::ByteOrder byteOrder);

} // namespace zqx::pictures
