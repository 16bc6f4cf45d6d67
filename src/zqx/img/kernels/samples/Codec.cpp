#include "kernels/samples/Codec.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "kernels/maths/ColorScience.h"
#include "kernels/maths/GammaTables.h"
#include "kernels/maths/LookUp.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/samples/Codec.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

#include "kernels/Simd.h"
#include "kernels/maths/Maths-inl.h"

#ifndef ZQX_IMG_CODEC_LUMA_
#define ZQX_IMG_CODEC_LUMA_
namespace zqx::img::kernels {

/// What puts luma in place of the red plane.
struct LumaFunctions {
    void (*ofLinear)(Run& run, std::size_t length);
    void (*ofStored)(Run& run, std::size_t length);
};

} // namespace zqx::img::kernels
#endif

HWY_BEFORE_NAMESPACE();
namespace zqx::img::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using F32 = hn::ScalableTag<float>;
using I32 = hn::RebindToSigned<F32>;
using U8 = hn::ScalableTag<std::uint8_t>;
using QuarterU8 = hn::Rebind<std::uint8_t, F32>; // as many bytes as a vector holds floats

// Pixels are taken apart into planes of their elements and put together from them, then the elements of each plane are
// converted. Elements are bytes or floats.

/// Wider vectors are slower at this: the elements have to cross more lanes.
constexpr std::size_t MAX_INTERLEAVED_BYTES = 32;

template <std::size_t Count, class D, typename T>
HWY_INLINE void splitVector(D d, const T* pixels, T* const* planes, std::size_t at) {
    hn::Vec<D> v0;
    hn::Vec<D> v1;
    hn::Vec<D> v2;
    hn::Vec<D> v3;
    if constexpr (Count == 3) {
        hn::LoadInterleaved3(d, pixels, v0, v1, v2);
    } else {
        hn::LoadInterleaved4(d, pixels, v0, v1, v2, v3);
        hn::StoreU(v3, d, planes[3] + at);
    }
    hn::StoreU(v0, d, planes[0] + at);
    hn::StoreU(v1, d, planes[1] + at);
    hn::StoreU(v2, d, planes[2] + at);
}

template <std::size_t Count, class D, typename T>
HWY_INLINE void joinVector(D d, const T* const* planes, std::size_t at, T* pixels) {
    const auto v0 = hn::LoadU(d, planes[0] + at);
    const auto v1 = hn::LoadU(d, planes[1] + at);
    const auto v2 = hn::LoadU(d, planes[2] + at);
    if constexpr (Count == 3) {
        hn::StoreInterleaved3(v0, v1, v2, d, pixels);
    } else {
        hn::StoreInterleaved4(v0, v1, v2, hn::LoadU(d, planes[3] + at), d, pixels);
    }
}

/// Asks for the bytes of the next run, which arrive while this one is worked on.
HWY_INLINE void prefetchNext(const std::uint8_t* packed, std::size_t bytes) {
    constexpr std::size_t CACHE_LINE = 64;
    for (std::size_t i = 0; i < bytes; i += CACHE_LINE) {
        hwy::Prefetch(packed + bytes + i);
    }
}

/// Packed pixels of `Count` elements into planes.
template <std::size_t Count, typename T>
void split(const std::uint8_t* packed, std::size_t length, T* const* planes) {
    if constexpr (Count == 1) {
        std::memcpy(planes[0], packed, length * sizeof(T));
    } else {
        const hn::CappedTag<T, MAX_INTERLEAVED_BYTES / sizeof(T)> d;
        const std::size_t lanes = hn::Lanes(d);
        alignas(64) T rest[Count * MAX_INTERLEAVED_BYTES / sizeof(T)];
        std::size_t i = 0;
        for (; i + lanes <= length; i += lanes) {
            splitVector<Count>(d, reinterpret_cast<const T*>(packed) + i * Count, planes, i);
        }
        if (i < length) {
            std::memset(rest, 0, sizeof rest);
            std::memcpy(rest, packed + i * Count * sizeof(T), (length - i) * Count * sizeof(T));
            splitVector<Count>(d, rest, planes, i);
        }
    }
}

/// Planes into packed pixels of `Count` elements.
template <std::size_t Count, typename T>
void join(const T* const* planes, std::size_t length, std::uint8_t* packed) {
    if constexpr (Count == 1) {
        std::memcpy(packed, planes[0], length * sizeof(T));
    } else {
        const hn::CappedTag<T, MAX_INTERLEAVED_BYTES / sizeof(T)> d;
        const std::size_t lanes = hn::Lanes(d);
        alignas(64) T rest[Count * MAX_INTERLEAVED_BYTES / sizeof(T)];
        std::size_t i = 0;
        for (; i + lanes <= length; i += lanes) {
            joinVector<Count>(d, planes, i, reinterpret_cast<T*>(packed) + i * Count);
        }
        if (i < length) {
            joinVector<Count>(d, planes, i, rest);
            std::memcpy(packed + i * Count * sizeof(T), rest, (length - i) * Count * sizeof(T));
        }
    }
}

template <std::size_t Size>
void pack(const std::uint8_t* pixels, std::size_t stride, std::size_t length, std::uint8_t* packed) {
    for (std::size_t i = 0; i < length; ++i) {
        std::memcpy(packed + i * Size, pixels + i * stride, Size);
    }
}

template <std::size_t Size>
void unpack(const std::uint8_t* packed, std::size_t length, std::uint8_t* pixels, std::size_t stride) {
    for (std::size_t i = 0; i < length; ++i) {
        std::memcpy(pixels + i * stride, packed + i * Size, Size);
    }
}

/// Pixels of any stride into planes.
template <std::size_t Count, typename T>
void splitPixels(const std::uint8_t* pixels, std::size_t stride, std::size_t length, T* const* planes) {
    constexpr std::size_t SIZE = Count * sizeof(T);
    if (stride == SIZE) {
        prefetchNext(pixels, length * SIZE);
        split<Count>(pixels, length, planes);
    } else {
        std::uint8_t packed[RUN_LENGTH * SIZE] = {};
        pack<SIZE>(pixels, stride, length, packed);
        split<Count>(packed, length, planes);
    }
}

/// Copies bytes by streaming stores. Other threads see them after the loop over rows, which waits for such stores.
void stream(const std::uint8_t* bytes, std::size_t count, std::uint8_t* target) {
    const U8 d;
    const std::size_t lanes = hn::Lanes(d);
    const std::size_t misaligned = reinterpret_cast<std::uintptr_t>(target) % lanes;
    std::size_t i = std::min(count, misaligned == 0 ? 0 : lanes - misaligned);
    std::memcpy(target, bytes, i);
    for (; i + lanes <= count; i += lanes) {
        hn::Stream(hn::LoadU(d, bytes + i), d, target + i);
    }
    std::memcpy(target + i, bytes + i, count - i);
}

/// Planes into pixels of any stride.
template <std::size_t Count, Writing W, typename T>
void joinPixels(const T* const* planes, std::size_t length, std::uint8_t* pixels, std::size_t stride) {
    constexpr std::size_t SIZE = Count * sizeof(T);
    const bool isPacked = stride == SIZE;
    if (isPacked && W == Writing::CACHED) {
        join<Count>(planes, length, pixels);
    } else if (isPacked && Count == 1) {
        stream(reinterpret_cast<const std::uint8_t*>(planes[0]), length * SIZE, pixels);
    } else {
        alignas(64) std::uint8_t packed[RUN_LENGTH * SIZE];
        join<Count>(planes, length, packed);
        if (isPacked) {
            stream(packed, length * SIZE, pixels);
        } else {
            unpack<SIZE>(packed, length, pixels, stride);
        }
    }
}

void decodeAlpha(const std::uint8_t* codes, std::size_t length, float* values) {
    const F32 d;
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        const auto number = hn::ConvertTo(d, hn::PromoteTo(I32(), hn::LoadU(QuarterU8(), codes + i)));
        hn::StoreU(hn::Div(number, hn::Set(d, 255.0F)), d, values + i);
    }
}

/// See encodeGamma: the bucket of each value, and its place there.
void findBuckets(const float* values, std::size_t length, std::int32_t* buckets, std::int32_t* places) {
    const F32 d;
    const I32 di;
    const auto least = hn::Set(d, GAMMA_ENCODE_THRESHOLD[1]);
    const auto one = hn::Set(d, 1.0F);
    const auto before = hn::Set(di, static_cast<std::int32_t>(GAMMA_FIRST_BUCKET) - 1);
    const auto mask = hn::Set(di, (1 << BUCKET_SHIFT) - 1);
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        const auto v = hn::LoadU(d, values + i);
        const auto isSome = hn::RebindMask(di, hn::Ge(v, least)); // not so for NaN
        const auto bits = hn::BitCast(di, hn::IfThenElse(hn::Lt(v, one), v, one));
        const auto bucket = hn::Sub(hn::ShiftRight<BUCKET_SHIFT>(bits), before);
        hn::Store(hn::IfThenElseZero(isSome, bucket), di, buckets + i);
        hn::Store(hn::And(bits, mask), di, places + i);
    }
}

/// The code of each value, from the entry of its bucket and its place there.
void computeCodes(const std::int32_t* entries, const std::int32_t* places, std::size_t length, std::uint8_t* codes) {
    const I32 di;
    const auto mask = hn::Set(di, (1 << GAMMA_BUCKET_CODE_SHIFT) - 1);
    for (std::size_t i = 0; i < length; i += hn::Lanes(di)) {
        const auto entry = hn::Load(di, entries + i);
        const auto isBefore = hn::VecFromMask(di, hn::Lt(hn::Load(di, places + i), hn::And(entry, mask)));
        const auto next = hn::Add(hn::ShiftRight<GAMMA_BUCKET_CODE_SHIFT>(entry), hn::Set(di, 1));
        hn::StoreU(hn::DemoteTo(QuarterU8(), hn::Add(next, isBefore)), QuarterU8(), codes + i); // true is -1
    }
}

/// See encodeUnit.
HWY_INLINE hn::Vec<I32> unitCodes(hn::Vec<F32> v) {
    const F32 d;
    const auto one = hn::Set(d, 1.0F);
    const auto limited = hn::IfThenElse(hn::Lt(v, one), v, one);
    const auto isSome = hn::Gt(v, hn::Zero(d)); // not so for NaN
    return hn::ConvertTo(I32(), hn::IfThenElseZero(isSome, hn::Mul(hn::Set(d, 255.0F), limited)));
}

void encodeGammaBytes(const float* values, std::size_t length, std::uint8_t* codes) {
    alignas(64) std::int32_t buckets[RUN_LENGTH];
    alignas(64) std::int32_t places[RUN_LENGTH];
    alignas(64) std::int32_t entries[RUN_LENGTH];
    findBuckets(values, length, buckets, places);
    lookUp(GAMMA_BUCKETS.data(), buckets, length, entries);
    computeCodes(entries, places, length, codes);
}

void encodeUnitBytes(const float* values, std::size_t length, std::uint8_t* codes) {
    const F32 d;
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        hn::StoreU(hn::DemoteTo(QuarterU8(), unitCodes(hn::LoadU(d, values + i))), QuarterU8(), codes + i);
    }
}

/// Planes of bytes between pixels and floats.
struct ByteRun {
    alignas(64) std::uint8_t plane[4][RUN_LENGTH];
};

/// Lists the planes of channels in the order of a pixel's elements.
template <Format F, typename Channels, typename Plane>
HWY_INLINE void putInOrder(Channels& channels, Plane* (&planes)[4]) {
    constexpr PixelFormat FORMAT = pixelFormat(F);
    planes[FORMAT.red] = channels.r;
    if constexpr (!FORMAT.isGrey()) {
        planes[FORMAT.green] = channels.g;
        planes[FORMAT.blue] = channels.b;
    }
    if constexpr (FORMAT.hasAlpha()) {
        planes[FORMAT.alpha] = channels.a;
    }
}

template <Format F>
void decode(const std::uint8_t* pixels, std::size_t stride, std::size_t length, const ByteTable& table, Run& run) {
    constexpr PixelFormat FORMAT = pixelFormat(F);
    constexpr std::size_t COUNT = FORMAT.elementCount();
    float* planes[4];
    putInOrder<F>(run, planes);
    if constexpr (FORMAT.isFloat()) {
        splitPixels<COUNT, float>(pixels, stride, length, planes);
    } else {
        ByteRun bytes;
        std::uint8_t* const codes[4] = {bytes.plane[0], bytes.plane[1], bytes.plane[2], bytes.plane[3]};
        splitPixels<COUNT, std::uint8_t>(pixels, stride, length, codes);
        for (std::size_t i = 0; i < COUNT; ++i) {
            if (i == FORMAT.alpha) {
                decodeAlpha(codes[i], length, planes[i]);
            } else {
                lookUp(table.data(), codes[i], length, planes[i]);
            }
        }
    }
}

template <Format F, Writing W>
void encode(const Planes& channels, std::size_t length, std::uint8_t* pixels, std::size_t stride) {
    constexpr PixelFormat FORMAT = pixelFormat(F);
    constexpr std::size_t COUNT = FORMAT.elementCount();
    const float* planes[4];
    putInOrder<F>(channels, planes);
    if constexpr (FORMAT.isFloat()) {
        joinPixels<COUNT, W, float>(planes, length, pixels, stride);
    } else {
        ByteRun bytes;
        const std::uint8_t* const codes[4] = {bytes.plane[0], bytes.plane[1], bytes.plane[2], bytes.plane[3]};
        for (std::size_t i = 0; i < COUNT; ++i) {
            if (i == FORMAT.alpha || FORMAT.encoding == Encoding::LINEAR_BYTE) {
                encodeUnitBytes(planes[i], length, bytes.plane[i]);
            } else {
                encodeGammaBytes(planes[i], length, bytes.plane[i]);
            }
        }
        joinPixels<COUNT, W, std::uint8_t>(codes, length, pixels, stride);
    }
}

/// Puts the luma of linear light in place of the red plane.
void linearLumaIntoRed(Run& run, std::size_t length) {
    const F32 d;
    const auto red = hn::Set(d, LUMA_RED);
    const auto green = hn::Set(d, LUMA_GREEN);
    const auto blue = hn::Set(d, LUMA_BLUE);
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        const auto sum = hn::Add(hn::Mul(red, hn::Load(d, run.r + i)), hn::Mul(green, hn::Load(d, run.g + i)));
        hn::Store(hn::Add(sum, hn::Mul(blue, hn::Load(d, run.b + i))), d, run.r + i);
    }
}

/// Puts the luma of stored values, decoded as a whole, in place of the red plane.
void storedLumaIntoRed(Run& run, std::size_t length) {
    const hn::ScalableTag<double> d;
    const hn::Rebind<float, decltype(d)> df;
    const auto red = hn::Set(df, ENCODED_LUMA_RED);
    const auto green = hn::Set(df, ENCODED_LUMA_GREEN);
    const auto blue = hn::Set(df, ENCODED_LUMA_BLUE);
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        const auto sum = hn::Add(hn::Mul(red, hn::Load(df, run.r + i)), hn::Mul(green, hn::Load(df, run.g + i)));
        const auto stored = hn::Add(sum, hn::Mul(blue, hn::Load(df, run.b + i)));
        hn::Store(decodeStored(d, stored), df, run.r + i);
    }
}

template <std::size_t... F>
constexpr std::array<DecodeRun, FORMAT_COUNT> decoders(std::index_sequence<F...>) {
    return {&decode<static_cast<Format>(F)>...};
}

template <Writing W, std::size_t... F>
constexpr std::array<EncodeRun, FORMAT_COUNT> encoders(std::index_sequence<F...>) {
    return {&encode<static_cast<Format>(F), W>...};
}

} // namespace

DecodeRun decoder(Format format) {
    static constexpr auto TABLE = decoders(std::make_index_sequence<FORMAT_COUNT>());
    return TABLE[static_cast<std::size_t>(format)];
}

EncodeRun encoder(Format format, Writing writing) {
    constexpr auto FORMATS = std::make_index_sequence<FORMAT_COUNT>();
    static constexpr auto CACHED = encoders<Writing::CACHED>(FORMATS);
    static constexpr auto STREAMING = encoders<Writing::STREAMING>(FORMATS);
    return (writing == Writing::STREAMING ? STREAMING : CACHED)[static_cast<std::size_t>(format)];
}

LumaFunctions lumaFunctions() {
    return {&linearLumaIntoRed, &storedLumaIntoRed};
}

} // namespace zqx::img::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zqx::img::kernels {

namespace {

HWY_EXPORT(decoder);
HWY_EXPORT(encoder);
HWY_EXPORT(lumaFunctions);

bool needsLuma(Format from, Format to) {
    return pixelFormat(to).isGrey() && !pixelFormat(from).isGrey();
}

} // namespace

const ByteTable& linearLightTable(Format format) {
    return pixelFormat(format).encoding == Encoding::GAMMA_BYTE ? GAMMA_DECODE : UNIT_DECODE;
}

DecodeRun getDecoder(Format format) {
    return HWY_DYNAMIC_DISPATCH(decoder)(format);
}

EncodeRun getEncoder(Format format, Writing writing) {
    return HWY_DYNAMIC_DISPATCH(encoder)(format, writing);
}

Writing chooseWriting(const Image& source, const Image& target) {
    // More than the last-level cache of a processor has for each of two pictures.
    constexpr std::size_t LARGE = std::size_t{32} << 20U;
    const bool isLarge = target.getHeight() * target.getByteRowStride() >= LARGE;
    // Runs of bytes are too short to gain: the cache lines at their ends are written by halves.
    return isLarge && target.hasFloatFormat() && !shareMemory(source, target) ? Writing::STREAMING : Writing::CACHED;
}

bool shareMemory(const Image& a, const Image& b) {
    const auto begin = [](const Image& image) { return reinterpret_cast<std::uintptr_t>(image.getDataPtr()); };
    const auto end = [&](const Image& image) { return begin(image) + image.getHeight() * image.getByteRowStride(); };
    return begin(a) < end(b) && begin(b) < end(a);
}

RunReader::RunReader(Format source, Format channels)
    : mDecode(getDecoder(source)), mTable(&linearLightTable(source)),
      mIsGrey(pixelFormat(source).isGrey() || pixelFormat(channels).isGrey()),
      mLacksAlpha(pixelFormat(channels).hasAlpha() && !pixelFormat(source).hasAlpha()) {
    if (needsLuma(source, channels)) {
        const bool isStored = pixelFormat(source).encoding == Encoding::GAMMA_BYTE;
        mLuma = isStored ? Luma::OF_STORED_VALUES : Luma::OF_LINEAR_LIGHT;
        mTable = &UNIT_DECODE;
    }
}

Planes RunReader::read(const std::uint8_t* pixels, std::size_t stride, std::size_t length, Run& run) const {
    mDecode(pixels, stride, length, *mTable, run);
    switch (mLuma) {
    case Luma::NOT_NEEDED: break;
    case Luma::OF_LINEAR_LIGHT: lumaIntoRed(run, length); break;
    case Luma::OF_STORED_VALUES: HWY_DYNAMIC_DISPATCH(lumaFunctions)().ofStored(run, length); break;
    }
    if (mLacksAlpha) {
        std::fill_n(run.a, length, 1.0F);
    }
    return mIsGrey ? Planes{run.r, run.r, run.r, run.a} : Planes{run.r, run.g, run.b, run.a};
}

RunWriter::RunWriter(Format channels, Format target, Writing writing)
    : mEncode(getEncoder(target, writing)), mNeedsLuma(needsLuma(channels, target)),
      mIsGrey(pixelFormat(channels).isGrey()),
      mLacksAlpha(pixelFormat(target).hasAlpha() && !pixelFormat(channels).hasAlpha()) {
}

void RunWriter::write(Run& run, std::size_t length, std::uint8_t* pixels, std::size_t stride) const {
    if (mNeedsLuma) {
        lumaIntoRed(run, length);
    }
    if (mLacksAlpha) {
        std::fill_n(run.a, length, 1.0F);
    }
    mEncode(mIsGrey ? Planes{run.r, run.r, run.r, run.a} : Planes{run.r, run.g, run.b, run.a}, length, pixels, stride);
}

void lumaIntoRed(Run& run, std::size_t length) {
    HWY_DYNAMIC_DISPATCH(lumaFunctions)().ofLinear(run, length);
}

} // namespace zqx::img::kernels
#endif
