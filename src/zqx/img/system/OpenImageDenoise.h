// The functions of OpenImageDenoise that denoising calls, bound when they are first wanted: the library is large, often
// absent, and everything but denoising works without it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace zqx::img {

/// All of the functions, or none. Types as in the library's C interface; bool and enumerations included.
struct OpenImageDenoise {
    using Device = struct OIDNDeviceImpl*;
    using Filter = struct OIDNFilterImpl*;

    static constexpr int DEVICE_TYPE_DEFAULT = 0;
    static constexpr int DEVICE_TYPE_CPU = 1;
    static constexpr int FORMAT_FLOAT3 = 3;
    static constexpr int ERROR_NONE = 0;

    Device (*newDevice)(int type);
    void (*commitDevice)(Device device);
    int (*getDeviceError)(Device device, const char** message);
    void (*releaseDevice)(Device device);
    Filter (*newFilter)(Device device, const char* type);
    void (*setSharedFilterImage)(Filter filter, const char* name, void* pixels, int format, std::size_t width,
                                 std::size_t height, std::size_t byteOffset, std::size_t bytePixelStride,
                                 std::size_t byteRowStride);
    void (*setFilterBool)(Filter filter, const char* name, bool value);
    void (*setFilterInt)(Filter filter, const char* name, int value);
    void (*commitFilter)(Filter filter);
    void (*executeFilter)(Filter filter);
    void (*releaseFilter)(Filter filter);
    /// Null in version 1, whose devices are all processors.
    bool (*getDeviceBool)(Device device, const char* name);

    /// Makes a committed device whose filters can work on ordinary memory: the default one, or the processor where
    /// that is a graphics card with memory of its own. Null when there is none.
    Device makeDevice() const;

    /// Looks for the library. What it finds stays loaded.
    /// @param error what to do about it when there is none
    static std::optional<OpenImageDenoise> load(std::string& error);
};

} // namespace zqx::img
