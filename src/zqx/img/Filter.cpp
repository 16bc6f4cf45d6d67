#include <zqx/img/Filter.h>

#include <utility>

namespace zqx::img {

Filter::Filter() = default;

Filter::Filter(const Filter& other) = default; // copied images never own their pixels

Filter::Filter(Filter&& other) noexcept
    : mErrorMessage(std::move(other.mErrorMessage)), mInputs(std::move(other.mInputs)), mSrcImage(other.mSrcImage),
      mOutImage(other.mOutImage) {
}

Filter& Filter::operator=(const Filter& other) = default; // memberwise: Image assignment copies ownership

Filter& Filter::operator=(Filter&& other) noexcept {
    if (this != &other) {
        mErrorMessage = std::move(other.mErrorMessage);
        mInputs.clear();
        mInputs.swap(other.mInputs);
    }
    mSrcImage = other.mSrcImage;
    mOutImage = other.mOutImage;
    return *this;
}

Filter::~Filter() = default;

// Assigning the argument makes two owners of an owning temporary's pixels, so the argument gives them up.

void Filter::setSrcImage(Image image) {
    mSrcImage = image;
    image.disown();
}

void Filter::setInput(const int& key, Image image) {
    mInputs[key] = image;
    image.disown();
}

void Filter::setOutput(Image image) {
    mOutImage = image;
    image.disown();
}

} // namespace zqx::img
