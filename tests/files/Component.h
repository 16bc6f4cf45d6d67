// Bitmap components as a host gets them: from the loaded module, through interfaces alone.
#pragma once

#include <tov/TovRef.h>
#include <zqx/qfreeimage/IFreeImage.h>

namespace zqx::img::test {

using qfreeimage::IFreeImage;
using Component = tov::TovRef<IFreeImage>;

/// A new component without a bitmap. @throws std::runtime_error when the module cannot be loaded
Component makeComponent();

/// Something that FreeImage does to find out the format, for every function that takes one.
inline constexpr int DETECT = -1;

} // namespace zqx::img::test
