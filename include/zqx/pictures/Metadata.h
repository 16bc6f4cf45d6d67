/// @file
/// Metadata of a picture: everything that accompanies its pixels.
#pragma once

#include <string>
#include <vector>

#include <zqx/pictures/Export.h>

namespace zqx::pictures {

/// Pixel density in dots per metre; 39.37 dots per metre are one dot per inch.
/// @ingroup pictures
struct Resolution {
    /// 72 dots per inch, assumed for files that do not give a resolution.
    static constexpr unsigned DEFAULT = 2835;

    unsigned x = DEFAULT; ///< horizontal; 0 if the file says that it is unknown
    unsigned y = DEFAULT; ///< vertical

    /// @{

    /// Compare both directions.
    friend bool operator==(const Resolution& a, const Resolution& b) { return a.x == b.x && a.y == b.y; }
    friend bool operator!=(const Resolution& a, const Resolution& b) { return !(a == b); }
    /// @}
};

/// A comment with its keyword.
/// @ingroup pictures
struct Comment {
    std::string keyword; ///< such as "Author" or "Comment"
    std::string text;    ///< as stored in the file, usually UTF-8 or Latin-1
};

/// The metadata of a picture, each kind as the block of bytes that its standard defines; empty if there is none.
/// @ingroup pictures
struct Metadata {
    std::vector<unsigned char> icc;  ///< ICC profile
    std::vector<unsigned char> exif; ///< TIFF structure without the leading "Exif"; its orientation is upright
    std::vector<unsigned char> iptc; ///< IPTC IIM datasets
    std::string xmp;                 ///< XMP packet
    std::string comments;            ///< of PNG and JPEG: keyword and text alternately, each ended by a zero byte
    Resolution resolution;           ///< pixel density at the intended size
};

/// Splits Metadata::comments into single comments.
/// @ingroup pictures
ZQX_PICTURES_EXPORT std::vector<Comment> commentsIn(const std::string& block);

} // namespace zqx::pictures
