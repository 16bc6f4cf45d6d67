#include "kernels/filters/WeightedSum.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/filters/WeightedSum.cpp"
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

#include "kernels/Simd.h"

HWY_BEFORE_NAMESPACE();
namespace zqx::img::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using F32 = hn::ScalableTag<float>;

/// Vectors whose sums stay in registers while the rows are gone through. Several hide the latency of an addition, and
/// share the weight.
constexpr std::size_t BLOCK_VECTORS = 8;

HWY_INLINE void sumBlock(const float* const* rows, std::size_t offset, const float* weights, std::size_t count,
                         std::size_t i, float* target) {
    const F32 d;
    const std::size_t lanes = hn::Lanes(d);
    auto sum0 = hn::Zero(d);
    auto sum1 = hn::Zero(d);
    auto sum2 = hn::Zero(d);
    auto sum3 = hn::Zero(d);
    auto sum4 = hn::Zero(d);
    auto sum5 = hn::Zero(d);
    auto sum6 = hn::Zero(d);
    auto sum7 = hn::Zero(d);
    for (std::size_t k = 0; k < count; ++k) {
        const float* row = rows[k] + offset + i;
        const auto weight = hn::Set(d, weights[k]);
        sum0 = hn::Add(sum0, hn::Mul(weight, hn::LoadU(d, row)));
        sum1 = hn::Add(sum1, hn::Mul(weight, hn::LoadU(d, row + lanes)));
        sum2 = hn::Add(sum2, hn::Mul(weight, hn::LoadU(d, row + 2 * lanes)));
        sum3 = hn::Add(sum3, hn::Mul(weight, hn::LoadU(d, row + 3 * lanes)));
        sum4 = hn::Add(sum4, hn::Mul(weight, hn::LoadU(d, row + 4 * lanes)));
        sum5 = hn::Add(sum5, hn::Mul(weight, hn::LoadU(d, row + 5 * lanes)));
        sum6 = hn::Add(sum6, hn::Mul(weight, hn::LoadU(d, row + 6 * lanes)));
        sum7 = hn::Add(sum7, hn::Mul(weight, hn::LoadU(d, row + 7 * lanes)));
    }
    hn::StoreU(sum0, d, target + i);
    hn::StoreU(sum1, d, target + i + lanes);
    hn::StoreU(sum2, d, target + i + 2 * lanes);
    hn::StoreU(sum3, d, target + i + 3 * lanes);
    hn::StoreU(sum4, d, target + i + 4 * lanes);
    hn::StoreU(sum5, d, target + i + 5 * lanes);
    hn::StoreU(sum6, d, target + i + 6 * lanes);
    hn::StoreU(sum7, d, target + i + 7 * lanes);
}

HWY_INLINE void sumVector(const float* const* rows, std::size_t offset, const float* weights, std::size_t count,
                          std::size_t i, float* target) {
    const F32 d;
    auto sum = hn::Zero(d);
    for (std::size_t k = 0; k < count; ++k) {
        sum = hn::Add(sum, hn::Mul(hn::Set(d, weights[k]), hn::LoadU(d, rows[k] + offset + i)));
    }
    hn::StoreU(sum, d, target + i);
}

void sumRows(const float* const* rows, std::size_t offset, const float* weights, std::size_t count, std::size_t length,
             float* target) {
    const std::size_t lanes = hn::Lanes(F32());
    static_assert(hn::MaxLanes(F32()) <= WEIGHTED_SUM_EXCESS);
    std::size_t i = 0;
    for (; i + BLOCK_VECTORS * lanes <= length; i += BLOCK_VECTORS * lanes) {
        sumBlock(rows, offset, weights, count, i, target);
    }
    for (; i < length; i += lanes) {
        sumVector(rows, offset, weights, count, i, target);
    }
}

/// The sums of a group at one place. Row k is the k-th of the first sum and the (k - 1)-th of the second.
struct SumGroup {
    hn::Vec<F32> sum0;
    hn::Vec<F32> sum1;
    hn::Vec<F32> sum2;
    hn::Vec<F32> sum3;
};

HWY_INLINE void addTo(hn::Vec<F32>& sum, float weight, hn::Vec<F32> value) {
    sum = hn::Add(sum, hn::Mul(hn::Set(F32(), weight), value));
}

/// Adds a row to those of the sums that it belongs to.
HWY_INLINE void addRow(SumGroup& group, const float* weights, std::size_t count, std::size_t k, hn::Vec<F32> value) {
    if (k < count) {
        addTo(group.sum0, weights[k], value);
    }
    if (k >= 1 && k - 1 < count) {
        addTo(group.sum1, weights[k - 1], value);
    }
    if (k >= 2 && k - 2 < count) {
        addTo(group.sum2, weights[k - 2], value);
    }
    if (k >= 3 && k - 3 < count) {
        addTo(group.sum3, weights[k - 3], value);
    }
}

void sumRowGroup(const float* const* rows, std::size_t offset, const float* weights, std::size_t count,
                 std::size_t length, float* const* targets) {
    static_assert(WEIGHTED_SUM_GROUP == 4);
    const F32 d;
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        SumGroup group{hn::Zero(d), hn::Zero(d), hn::Zero(d), hn::Zero(d)};
        for (std::size_t k = 0; k < 3; ++k) {
            addRow(group, weights, count, k, hn::LoadU(d, rows[k] + offset + i));
        }
        for (std::size_t k = 3; k < count; ++k) { // rows of all four
            const auto row = hn::LoadU(d, rows[k] + offset + i);
            addTo(group.sum0, weights[k], row);
            addTo(group.sum1, weights[k - 1], row);
            addTo(group.sum2, weights[k - 2], row);
            addTo(group.sum3, weights[k - 3], row);
        }
        for (std::size_t k = count; k < count + 3; ++k) {
            addRow(group, weights, count, k, hn::LoadU(d, rows[k] + offset + i));
        }
        hn::StoreU(group.sum0, d, targets[0] + i);
        hn::StoreU(group.sum1, d, targets[1] + i);
        hn::StoreU(group.sum2, d, targets[2] + i);
        hn::StoreU(group.sum3, d, targets[3] + i);
    }
}

} // namespace

WeightedSums sums() {
    return {&sumRows, &sumRowGroup};
}

} // namespace zqx::img::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zqx::img::kernels {

namespace {
HWY_EXPORT(sums);
}

WeightedSums weightedSums() {
    return HWY_DYNAMIC_DISPATCH(sums)();
}

} // namespace zqx::img::kernels
#endif
