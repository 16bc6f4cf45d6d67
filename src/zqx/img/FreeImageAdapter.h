// An image whose pixels are a bitmap component's own memory.
#pragma once

#include <zqx/img/Image.h>
#include <zqx/qfreeimage/IFreeImage.h>

namespace zqx::img {

/// Views a bitmap and keeps its component alive. The bitmap must not be replaced while the view exists.
class FreeImageAdapter : public Image {
public:
    /// Takes a reference on the component. @throws std::invalid_argument for null
    explicit FreeImageAdapter(qfreeimage::IFreeImage* bitmap);
    FreeImageAdapter(const FreeImageAdapter&) = delete;
    FreeImageAdapter& operator=(const FreeImageAdapter&) = delete;
    /// Gives the reference back.
    ~FreeImageAdapter() override;

    /// A view of a new bitmap of width x height pixels, resampled with the Lanczos filter. When the component refuses,
    /// the assertion handler is asked; the result is empty unless there is a bitmap to view.
    std::shared_ptr<Image> scale(std::size_t width, std::size_t height) override;

private:
    qfreeimage::IFreeImage* mFreeImage;
};

} // namespace zqx::img
