// A constexpr 11 x 11 table of row kernels, one per source and target format, made from one template.
#pragma once

#include <array>
#include <cstddef>
#include <utility>

#include "PixelFormat.h"

namespace zqx::img::kernels {

namespace detail {

/// Sources with alpha share the kernel of their opaque counterpart where the target has no alpha: the pixel stride is
/// an argument of the kernel.
template <template <Format, Format> class Kernel, Format S, Format T>
constexpr auto pairKernel() {
    if constexpr (pixelFormat(T).hasAlpha()) {
        return &Kernel<S, T>::row;
    } else {
        return &Kernel<withoutAlpha(S), T>::row;
    }
}

template <template <Format, Format> class Kernel, std::size_t S, std::size_t... T>
constexpr auto pairTableRow(std::index_sequence<T...>) {
    return std::array{pairKernel<Kernel, static_cast<Format>(S), static_cast<Format>(T)>()...};
}

template <template <Format, Format> class Kernel, std::size_t... S>
constexpr auto pairTable(std::index_sequence<S...>) {
    return std::array{pairTableRow<Kernel, S>(std::make_index_sequence<FORMAT_COUNT>())...};
}

template <template <Format, Format> class Kernel>
inline constexpr auto PAIR_TABLE = pairTable<Kernel>(std::make_index_sequence<FORMAT_COUNT>());

} // namespace detail

/// The function `Kernel<source, target>::row` for two known formats.
template <template <Format, Format> class Kernel>
auto pairKernel(Format source, Format target) {
    return detail::PAIR_TABLE<Kernel>[static_cast<std::size_t>(source)][static_cast<std::size_t>(target)];
}

} // namespace zqx::img::kernels
