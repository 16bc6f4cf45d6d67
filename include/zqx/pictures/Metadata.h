/// @file
/// What travels beside the pixels of a picture.
#pragma once

#include <string>
#include <vector>

#include <zqx/pictures/Export.h>

namespace zqx::pictures {

/// Dots per metre. 39.37 of them are one dot per inch.
/// @ingroup pictures
struct Resolution {
    /// 72 dots per inch, which files that do not give a resolution are taken to have.
    static constexpr unsigned DEFAULT = 2835;

    unsigned x = DEFAULT; ///< to the right; 0 where a file says that it is unknown
    unsigned y = DEFAULT; ///< down

    /// @{

    /// Equal in both directions.
    friend bool operator==(const Resolution& a, const Resolution& b) { return a.x == b.x && a.y == b.y; }
    friend bool operator!=(const Resolution& a, const Resolution& b) { return !(a == b); }
    /// @}
};

/// A keyword and a text.
/// @ingroup pictures
struct Comment {
    std::string keyword; ///< "Author", "Comment"
    std::string text;    ///< as the file has it, usually UTF-8 or Latin-1
};

/// What travels beside the pixels, each as the block of bytes that its standard describes; empty where there is none.
/// @ingroup pictures
struct Metadata {
    std::vector<unsigned char> icc;  ///< ICC profile
    std::vector<unsigned char> exif; ///< TIFF structure, without the "Exif" in front of it; its orientation is upright
    std::vector<unsigned char> iptc; ///< IPTC IIM datasets
    std::string xmp;                 ///< XMP packet
    std::string comments;            ///< of PNG and JPEG files: keyword and text by turns, a zero byte behind each
    Resolution resolution;           ///< how large the picture is to be shown
};

/// The comments of Metadata::comments, one by one.
/// @ingroup pictures
ZQX_PICTURES_EXPORT std::vector<Comment> commentsIn(const std::string& block);

} // namespace zqx::pictures
