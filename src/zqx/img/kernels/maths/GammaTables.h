// The gamma curve of the encoded 8-bit formats as frozen tables: a pure power of 2.2, exact and the same everywhere.
// The values are hexadecimal floats so that no mathematics library has a say in them; a test recomputes them.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "kernels/samples/ThresholdEncoder.h"

namespace zqx::img::kernels {

/// (i / 255)^2.2, evaluated in double precision and rounded to the nearest float.
// clang-format off
inline constexpr std::array<float, 256> GAMMA_DECODE = {
    0x0p+0F, 0x1.54b716p-18F, 0x1.876104p-16F, 0x1.dd7e9p-15F, 0x1.c1938ep-14F, 0x1.6f42f8p-13F,
    0x1.123f9ep-12F, 0x1.80f864p-12F, 0x1.0236bep-11F, 0x1.4e9774p-11F, 0x1.a5df7p-11F, 0x1.04251cp-10F,
    0x1.3b076p-10F, 0x1.77b008p-10F, 0x1.ba36f8p-10F, 0x1.01595p-9F, 0x1.289c1cp-9F, 0x1.52ede8p-9F,
    0x1.805846p-9F, 0x1.b0e454p-9F, 0x1.e49ac6p-9F, 0x1.0dc1fep-8F, 0x1.2ad3fep-8F, 0x1.498742p-8F,
    0x1.69df82p-8F, 0x1.8be058p-8F, 0x1.af8d4p-8F, 0x1.d4e99ap-8F, 0x1.fbf8aap-8F, 0x1.125ecep-7F,
    0x1.279dc2p-7F, 0x1.3dbab4p-7F, 0x1.54b716p-7F, 0x1.6c9458p-7F, 0x1.8553dcp-7F, 0x1.9ef6fcp-7F,
    0x1.b97f0cp-7F, 0x1.d4ed56p-7F, 0x1.f1432p-7F, 0x1.0740d2p-6F, 0x1.16550ep-6F, 0x1.25dedap-6F,
    0x1.35decep-6F, 0x1.465578p-6F, 0x1.57436ap-6F, 0x1.68a932p-6F, 0x1.7a8756p-6F, 0x1.8cde62p-6F,
    0x1.9faedap-6F, 0x1.b2f94p-6F, 0x1.c6be14p-6F, 0x1.dafddap-6F, 0x1.efb90ap-6F, 0x1.02781p-5F,
    0x1.0d51ccp-5F, 0x1.1869f2p-5F, 0x1.23c0cp-5F, 0x1.2f566cp-5F, 0x1.3b2b32p-5F, 0x1.473f4ap-5F,
    0x1.5392eap-5F, 0x1.60264cp-5F, 0x1.6cf9a2p-5F, 0x1.7a0d24p-5F, 0x1.876104p-5F, 0x1.94f57ap-5F,
    0x1.a2cab6p-5F, 0x1.b0e0ecp-5F, 0x1.bf384ep-5F, 0x1.cdd10ep-5F, 0x1.dcab5cp-5F, 0x1.ebc768p-5F,
    0x1.fb2562p-5F, 0x1.0562bep-4F, 0x1.0d53fp-4F, 0x1.156662p-4F, 0x1.1d9a26p-4F, 0x1.25ef56p-4F,
    0x1.2e6606p-4F, 0x1.36fe4ep-4F, 0x1.3fb844p-4F, 0x1.4893fep-4F, 0x1.51918ep-4F, 0x1.5ab10ep-4F,
    0x1.63f292p-4F, 0x1.6d562cp-4F, 0x1.76dbf2p-4F, 0x1.8083fcp-4F, 0x1.8a4e58p-4F, 0x1.943b2p-4F,
    0x1.9e4a64p-4F, 0x1.a87c3ap-4F, 0x1.b2d0b4p-4F, 0x1.bd47e8p-4F, 0x1.c7e1e6p-4F, 0x1.d29ec2p-4F,
    0x1.dd7e9p-4F, 0x1.e88162p-4F, 0x1.f3a74ap-4F, 0x1.fef05cp-4F, 0x1.052e56p-3F, 0x1.0af622p-3F,
    0x1.10cfap-3F, 0x1.16bad6p-3F, 0x1.1cb7cep-3F, 0x1.22c69p-3F, 0x1.28e726p-3F, 0x1.2f1996p-3F,
    0x1.355decp-3F, 0x1.3bb42ep-3F, 0x1.421c66p-3F, 0x1.48969cp-3F, 0x1.4f22d8p-3F, 0x1.55c122p-3F,
    0x1.5c7182p-3F, 0x1.633402p-3F, 0x1.6a08a8p-3F, 0x1.70ef7ep-3F, 0x1.77e88ap-3F, 0x1.7ef3d4p-3F,
    0x1.861166p-3F, 0x1.8d4148p-3F, 0x1.94837ep-3F, 0x1.9bd814p-3F, 0x1.a33f1p-3F, 0x1.aab878p-3F,
    0x1.b24456p-3F, 0x1.b9e2bp-3F, 0x1.c1938ep-3F, 0x1.c956f8p-3F, 0x1.d12cf4p-3F, 0x1.d9158cp-3F,
    0x1.e110c4p-3F, 0x1.e91ea6p-3F, 0x1.f13f36p-3F, 0x1.f9728p-3F, 0x1.00dc44p-2F, 0x1.0508aap-2F,
    0x1.093e76p-2F, 0x1.0d7dacp-2F, 0x1.11c65p-2F, 0x1.161864p-2F, 0x1.1a73ecp-2F, 0x1.1ed8ecp-2F,
    0x1.234766p-2F, 0x1.27bf6p-2F, 0x1.2c40dap-2F, 0x1.30cbdap-2F, 0x1.356062p-2F, 0x1.39fe76p-2F,
    0x1.3ea61ap-2F, 0x1.43575p-2F, 0x1.48121ap-2F, 0x1.4cd67ep-2F, 0x1.51a47cp-2F, 0x1.567c1cp-2F,
    0x1.5b5d5cp-2F, 0x1.604844p-2F, 0x1.653cd2p-2F, 0x1.6a3b0ep-2F, 0x1.6f42f8p-2F, 0x1.745494p-2F,
    0x1.796fe6p-2F, 0x1.7e94fp-2F, 0x1.83c3b6p-2F, 0x1.88fc38p-2F, 0x1.8e3e7ep-2F, 0x1.938a86p-2F,
    0x1.98e058p-2F, 0x1.9e3ff4p-2F, 0x1.a3a95cp-2F, 0x1.a91c94p-2F, 0x1.ae99a2p-2F, 0x1.b42084p-2F,
    0x1.b9b14p-2F, 0x1.bf4bd8p-2F, 0x1.c4f04ep-2F, 0x1.ca9ea8p-2F, 0x1.d056e4p-2F, 0x1.d6190ap-2F,
    0x1.dbe51ap-2F, 0x1.e1bb16p-2F, 0x1.e79b04p-2F, 0x1.ed84e4p-2F, 0x1.f378b8p-2F, 0x1.f97686p-2F,
    0x1.ff7e5p-2F, 0x1.02c80cp-1F, 0x1.05d5fp-1F, 0x1.08e8d6p-1F, 0x1.0c00bep-1F, 0x1.0f1daap-1F,
    0x1.123f9ep-1F, 0x1.156698p-1F, 0x1.18929ap-1F, 0x1.1bc3a8p-1F, 0x1.1ef9bep-1F, 0x1.2234e2p-1F,
    0x1.257514p-1F, 0x1.28ba56p-1F, 0x1.2c04a6p-1F, 0x1.2f540ap-1F, 0x1.32a88p-1F, 0x1.36020ap-1F,
    0x1.3960aap-1F, 0x1.3cc46p-1F, 0x1.402d2ep-1F, 0x1.439b18p-1F, 0x1.470e1ap-1F, 0x1.4a8638p-1F,
    0x1.4e0374p-1F, 0x1.5185cep-1F, 0x1.550d48p-1F, 0x1.5899e4p-1F, 0x1.5c2bap-1F, 0x1.5fc28p-1F,
    0x1.635e86p-1F, 0x1.66ffbp-1F, 0x1.6aa602p-1F, 0x1.6e517cp-1F, 0x1.72022p-1F, 0x1.75b7eep-1F,
    0x1.7972e8p-1F, 0x1.7d331p-1F, 0x1.80f864p-1F, 0x1.84c2eap-1F, 0x1.88929ep-1F, 0x1.8c6786p-1F,
    0x1.9041ap-1F, 0x1.9420eep-1F, 0x1.980572p-1F, 0x1.9bef2cp-1F, 0x1.9fde1ep-1F, 0x1.a3d248p-1F,
    0x1.a7cbacp-1F, 0x1.abca4cp-1F, 0x1.afce28p-1F, 0x1.b3d742p-1F, 0x1.b7e59ap-1F, 0x1.bbf93p-1F,
    0x1.c01208p-1F, 0x1.c43022p-1F, 0x1.c8538p-1F, 0x1.cc7c2p-1F, 0x1.d0aa06p-1F, 0x1.d4dd34p-1F,
    0x1.d915a8p-1F, 0x1.dd5364p-1F, 0x1.e1966ap-1F, 0x1.e5debcp-1F, 0x1.ea2c58p-1F, 0x1.ee7f42p-1F,
    0x1.f2d77ap-1F, 0x1.f735p-1F, 0x1.fb97d8p-1F, 0x1p+0F,
};

/// Entry c is the smallest float v in [0, 1] for which the float product 255 * v^0.45454544 reaches c, so the truncated
/// code of v is the number of entries from 1 up that v reaches. A sentinel that nothing reaches closes the table.
inline constexpr std::array<float, 257> GAMMA_ENCODE_THRESHOLD = {
    0.0F,
    0x1.54b70ep-18F, 0x1.8760fcp-16F, 0x1.dd7e84p-15F, 0x1.c19386p-14F, 0x1.6f42f2p-13F, 0x1.123f98p-12F,
    0x1.80f85cp-12F, 0x1.0236bap-11F, 0x1.4e976ep-11F, 0x1.a5df68p-11F, 0x1.042518p-10F, 0x1.3b075ap-10F,
    0x1.77b002p-10F, 0x1.ba36f2p-10F, 0x1.01594ep-9F, 0x1.289c18p-9F, 0x1.52ede4p-9F, 0x1.805842p-9F,
    0x1.b0e44ep-9F, 0x1.e49acp-9F, 0x1.0dc1fap-8F, 0x1.2ad3fap-8F, 0x1.49873ep-8F, 0x1.69df7ep-8F,
    0x1.8be054p-8F, 0x1.af8d3cp-8F, 0x1.d4e994p-8F, 0x1.fbf8a2p-8F, 0x1.125ecap-7F, 0x1.279dbep-7F,
    0x1.3dbabp-7F, 0x1.54b714p-7F, 0x1.6c9454p-7F, 0x1.8553d8p-7F, 0x1.9ef6f8p-7F, 0x1.b97f08p-7F,
    0x1.d4ed52p-7F, 0x1.f1431cp-7F, 0x1.0740dp-6F, 0x1.16550cp-6F, 0x1.25ded8p-6F, 0x1.35decap-6F,
    0x1.465576p-6F, 0x1.574368p-6F, 0x1.68a92ep-6F, 0x1.7a8754p-6F, 0x1.8cde5ep-6F, 0x1.9faed6p-6F,
    0x1.b2f93cp-6F, 0x1.c6be1p-6F, 0x1.dafdd6p-6F, 0x1.efb906p-6F, 0x1.02780ep-5F, 0x1.0d51cap-5F,
    0x1.1869fp-5F, 0x1.23c0bcp-5F, 0x1.2f566ap-5F, 0x1.3b2b3p-5F, 0x1.473f48p-5F, 0x1.5392e8p-5F,
    0x1.602648p-5F, 0x1.6cf99ep-5F, 0x1.7a0d2p-5F, 0x1.876102p-5F, 0x1.94f578p-5F, 0x1.a2cab4p-5F,
    0x1.b0e0eap-5F, 0x1.bf384cp-5F, 0x1.cdd10ap-5F, 0x1.dcab58p-5F, 0x1.ebc764p-5F, 0x1.fb256p-5F,
    0x1.0562bep-4F, 0x1.0d53fp-4F, 0x1.15666p-4F, 0x1.1d9a24p-4F, 0x1.25ef54p-4F, 0x1.2e6604p-4F,
    0x1.36fe4ep-4F, 0x1.3fb842p-4F, 0x1.4893fcp-4F, 0x1.51918ep-4F, 0x1.5ab10cp-4F, 0x1.63f29p-4F,
    0x1.6d562ap-4F, 0x1.76dbfp-4F, 0x1.8083fap-4F, 0x1.8a4e56p-4F, 0x1.943b1ep-4F, 0x1.9e4a62p-4F,
    0x1.a87c38p-4F, 0x1.b2d0b2p-4F, 0x1.bd47e4p-4F, 0x1.c7e1e2p-4F, 0x1.d29ecp-4F, 0x1.dd7e8cp-4F,
    0x1.e8815ep-4F, 0x1.f3a748p-4F, 0x1.fef05ap-4F, 0x1.052e54p-3F, 0x1.0af622p-3F, 0x1.10cf9ep-3F,
    0x1.16bad4p-3F, 0x1.1cb7ccp-3F, 0x1.22c68ep-3F, 0x1.28e724p-3F, 0x1.2f1994p-3F, 0x1.355deap-3F,
    0x1.3bb42cp-3F, 0x1.421c64p-3F, 0x1.48969ap-3F, 0x1.4f22d6p-3F, 0x1.55c12p-3F, 0x1.5c718p-3F,
    0x1.6334p-3F, 0x1.6a08a6p-3F, 0x1.70ef7cp-3F, 0x1.77e888p-3F, 0x1.7ef3d2p-3F, 0x1.861164p-3F,
    0x1.8d4146p-3F, 0x1.94837cp-3F, 0x1.9bd812p-3F, 0x1.a33f0cp-3F, 0x1.aab876p-3F, 0x1.b24452p-3F,
    0x1.b9e2aep-3F, 0x1.c1938ep-3F, 0x1.c956f6p-3F, 0x1.d12cf4p-3F, 0x1.d9158ap-3F, 0x1.e110c4p-3F,
    0x1.e91ea4p-3F, 0x1.f13f36p-3F, 0x1.f9727ep-3F, 0x1.00dc44p-2F, 0x1.0508aap-2F, 0x1.093e76p-2F,
    0x1.0d7dacp-2F, 0x1.11c65p-2F, 0x1.161864p-2F, 0x1.1a73ecp-2F, 0x1.1ed8ecp-2F, 0x1.234766p-2F,
    0x1.27bf6p-2F, 0x1.2c40dap-2F, 0x1.30cbdap-2F, 0x1.356062p-2F, 0x1.39fe76p-2F, 0x1.3ea61ap-2F,
    0x1.43574ep-2F, 0x1.48121ap-2F, 0x1.4cd67cp-2F, 0x1.51a47cp-2F, 0x1.567c1cp-2F, 0x1.5b5d5cp-2F,
    0x1.604842p-2F, 0x1.653cd2p-2F, 0x1.6a3b0ep-2F, 0x1.6f42f8p-2F, 0x1.745494p-2F, 0x1.796fe6p-2F,
    0x1.7e94fp-2F, 0x1.83c3b4p-2F, 0x1.88fc38p-2F, 0x1.8e3e7cp-2F, 0x1.938a86p-2F, 0x1.98e058p-2F,
    0x1.9e3ff2p-2F, 0x1.a3a95ap-2F, 0x1.a91c94p-2F, 0x1.ae99ap-2F, 0x1.b42084p-2F, 0x1.b9b13ep-2F,
    0x1.bf4bd6p-2F, 0x1.c4f04ep-2F, 0x1.ca9ea6p-2F, 0x1.d056e4p-2F, 0x1.d6190ap-2F, 0x1.dbe518p-2F,
    0x1.e1bb16p-2F, 0x1.e79b02p-2F, 0x1.ed84e2p-2F, 0x1.f378b8p-2F, 0x1.f97686p-2F, 0x1.ff7e4ep-2F,
    0x1.02c80cp-1F, 0x1.05d5fp-1F, 0x1.08e8d4p-1F, 0x1.0c00bep-1F, 0x1.0f1daap-1F, 0x1.123f9ep-1F,
    0x1.156698p-1F, 0x1.18929ap-1F, 0x1.1bc3a6p-1F, 0x1.1ef9bep-1F, 0x1.2234e2p-1F, 0x1.257514p-1F,
    0x1.28ba56p-1F, 0x1.2c04a6p-1F, 0x1.2f540ap-1F, 0x1.32a88p-1F, 0x1.36020ap-1F, 0x1.3960aap-1F,
    0x1.3cc46p-1F, 0x1.402d2ep-1F, 0x1.439b16p-1F, 0x1.470e1ap-1F, 0x1.4a8638p-1F, 0x1.4e0374p-1F,
    0x1.5185cep-1F, 0x1.550d48p-1F, 0x1.5899e2p-1F, 0x1.5c2bap-1F, 0x1.5fc28p-1F, 0x1.635e86p-1F,
    0x1.66ffbp-1F, 0x1.6aa602p-1F, 0x1.6e517cp-1F, 0x1.72022p-1F, 0x1.75b7eep-1F, 0x1.7972e8p-1F,
    0x1.7d330ep-1F, 0x1.80f864p-1F, 0x1.84c2e8p-1F, 0x1.88929ep-1F, 0x1.8c6786p-1F, 0x1.9041ap-1F,
    0x1.9420eep-1F, 0x1.980572p-1F, 0x1.9bef2cp-1F, 0x1.9fde1ep-1F, 0x1.a3d248p-1F, 0x1.a7cbacp-1F,
    0x1.abca4cp-1F, 0x1.afce28p-1F, 0x1.b3d74p-1F, 0x1.b7e598p-1F, 0x1.bbf93p-1F, 0x1.c01208p-1F,
    0x1.c43022p-1F, 0x1.c8537ep-1F, 0x1.cc7c2p-1F, 0x1.d0aa06p-1F, 0x1.d4dd32p-1F, 0x1.d915a6p-1F,
    0x1.dd5364p-1F, 0x1.e1966ap-1F, 0x1.e5debap-1F, 0x1.ea2c58p-1F, 0x1.ee7f4p-1F, 0x1.f2d778p-1F,
    0x1.f735p-1F, 0x1.fb97d6p-1F, 0x1.fffffep-1F,
    std::numeric_limits<float>::infinity(),
};
// clang-format on

/// Encodes linear light: trunc(255 * v^0.45454544) of v limited to [0, 1], for every float; NaN gives 0.
inline constexpr ThresholdEncoder<256> GAMMA_ENCODER([](std::size_t code) { return GAMMA_ENCODE_THRESHOLD[code]; });

constexpr std::uint8_t encodeGamma(float v) {
    return GAMMA_ENCODER(v);
}

// The buckets of this encoder for vectors: one integer each, as several look-ups are slower than the arithmetic.

inline constexpr std::uint32_t GAMMA_FIRST_BUCKET = bucketIndex(GAMMA_ENCODE_THRESHOLD[1]);
inline constexpr std::uint32_t GAMMA_LAST_BUCKET = bucketIndex(1.0F);
inline constexpr std::size_t GAMMA_BUCKET_COUNT = GAMMA_LAST_BUCKET - GAMMA_FIRST_BUCKET + 2; // one for smaller floats

/// Bits of a bucket's entry below the code: they hold the place within the bucket where the next code begins.
inline constexpr int GAMMA_BUCKET_CODE_SHIFT = BUCKET_SHIFT + 1;

namespace detail {

constexpr std::array<std::int32_t, GAMMA_BUCKET_COUNT> gammaBuckets() {
    constexpr std::uint32_t END = 1U << BUCKET_SHIFT;
    std::array<std::int32_t, GAMMA_BUCKET_COUNT> buckets{static_cast<std::int32_t>(END)};
    for (std::size_t i = 1; i < GAMMA_BUCKET_COUNT; ++i) {
        const auto first = static_cast<std::uint32_t>(GAMMA_FIRST_BUCKET + i - 1) << BUCKET_SHIFT;
        const std::uint32_t code = encodeGamma(std::bit_cast<float>(first));
        const std::uint32_t next = std::bit_cast<std::uint32_t>(GAMMA_ENCODE_THRESHOLD[code + 1]) - first;
        buckets[i] = static_cast<std::int32_t>(code << GAMMA_BUCKET_CODE_SHIFT | (next < END ? next : END));
    }
    return buckets;
}

} // namespace detail

/// For each bucket the code of its smallest float, shifted, and the place where the next code begins: the bucket's
/// size where that is further on. Entry 0 is for what is too small for code 1, entry 1 for the first bucket.
inline constexpr auto GAMMA_BUCKETS = detail::gammaBuckets();

/// Writes a linear value into a linear byte: trunc(255 * v) of v limited to [0, 1], for every float; NaN gives 0.
constexpr std::uint8_t encodeUnit(float v) {
    if (!(v > 0.0F)) { // also NaN
        return 0;
    }
    return static_cast<std::uint8_t>(255.0F * (v < 1.0F ? v : 1.0F));
}

namespace detail {

constexpr std::array<float, 256> unitTable() {
    std::array<float, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        table[i] = static_cast<float>(i) / 255.0F;
    }
    return table;
}

} // namespace detail

/// i / 255.
inline constexpr std::array<float, 256> UNIT_DECODE = detail::unitTable();

} // namespace zqx::img::kernels
