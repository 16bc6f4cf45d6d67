/// @file
/// The base of all image filters: a source, keyed inputs, an output, and a message when something failed.
#pragma once

#include <map>
#include <string>

#include <zqx/img/Export.h>
#include <zqx/img/Image.h>
#include <zqx/img/Warnings.h>

namespace zqx::img {

ZQX_IMG_BEGIN_PLAIN_DESTRUCTORS

/// An image operation that is configured with images and parameters, run with execute(), and read or run again.
///
/// A filter's images are views: it allocates no pixels for them and frees none when an image is replaced, so the
/// caller keeps their memory alive until execute() has returned. The one exception: a setter that is given an owning
/// temporary takes the pixels over. Pixels so taken for the source or the output are freed with the filter, unless
/// another image replaced them before.
///
/// The destructor is not virtual: destroy a filter through its own type. A compiler that is asked for
/// -Wnon-virtual-dtor warns of that in filters of your own, unless they stand between ZQX_IMG_BEGIN_PLAIN_DESTRUCTORS
/// and ZQX_IMG_END_PLAIN_DESTRUCTORS.
///
/// Thread-safety: one thread at a time per filter.
/// @ingroup filters
class ZQX_IMG_API Filter {
public:
    /// No images, no inputs, no message.
    Filter();
    /// Views the same images as the other filter; owns none of them.
    Filter(const Filter& other);
    /// Takes over the message and the inputs; views the same source and output without owning them.
    Filter(Filter&& other) noexcept;
    /// Memberwise, ownership of source and output included: the caller sees to it that only one of the two frees them.
    Filter& operator=(const Filter& other);
    /// Takes over the message and the inputs; source and output as in copy assignment.
    Filter& operator=(Filter&& other) noexcept;
    /// Frees the pixels that setters took over for the source and the output.
    ~Filter();

    /// Sets the single source image.
    void setSrcImage(Image image);
    /// Sets the input of a key, replacing an earlier one. Keys are defined by each filter.
    void setInput(const int& key, Image image);
    /// Sets the image that execute() writes.
    void setOutput(Image image);

    /// The text of the last failure, empty after construction. A later success does not clear it.
    const std::string& getErrorMessage() const { return mErrorMessage; }

    /// Runs the filter. What the result says is defined by each filter.
    virtual bool execute() = 0;

protected:
    std::string mErrorMessage;    ///< what getErrorMessage() returns; set it where execute() fails
    std::map<int, Image> mInputs; ///< by key, as set with setInput()
    Image mSrcImage;              ///< as set with setSrcImage()
    Image mOutImage;              ///< as set with setOutput()
};

ZQX_IMG_END_PLAIN_DESTRUCTORS

} // namespace zqx::img
