// A stand-in for OpenImageDenoise, version 1 or 2 of its interface: it writes every call down, "denoises" by a rule
// that a reader can follow in the head, and fails where it is told to.
#include "StandIn.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

struct OIDNDeviceImpl {
    int number;
    int type;
};

namespace {

struct SharedImage {
    unsigned char* pixels;
    std::size_t width;
    std::size_t height;
    std::size_t pixelStride;
    std::size_t rowStride;

    unsigned char* element(std::size_t x, std::size_t y, std::size_t channel) const {
        return pixels + y * rowStride + x * pixelStride + channel * sizeof(float);
    }

    float read(std::size_t x, std::size_t y, std::size_t channel) const {
        float value;
        std::memcpy(&value, element(x, y, channel), sizeof value);
        return value;
    }

    void write(std::size_t x, std::size_t y, std::size_t channel, float value) const {
        std::memcpy(element(x, y, channel), &value, sizeof value);
    }
};

} // namespace

struct OIDNFilterImpl {
    int number;
    std::map<std::string, SharedImage> images;
};

namespace {

using Device = OIDNDeviceImpl*;
using Filter = OIDNFilterImpl*;

constexpr int ERROR_NONE = 0;
constexpr int ERROR_UNKNOWN = 1;
constexpr int DEVICE_TYPE_CPU = 1;

int deviceCount = 0;
int filterCount = 0;
bool errorPending = false;
std::string errorText;

bool failsAt(const std::string& what) {
    const char* failure = std::getenv(STAND_IN_FAILURE);
    if (failure == nullptr || failure != what) {
        return false;
    }
    if (const char* message = std::getenv(STAND_IN_MESSAGE)) {
        errorPending = true;
        errorText = message;
    }
    return true;
}

std::string text(const char* characters) {
    return characters;
}

std::string text(bool value) {
    return value ? "true" : "false";
}

std::string text(int value) {
    return std::to_string(value);
}

std::string text(std::size_t value) {
    return std::to_string(value);
}

std::string text(const void* address) {
    std::ostringstream out;
    out << address;
    return out.str();
}

std::string text(Device device) {
    return device != nullptr ? "device " + std::to_string(device->number) : "no device";
}

std::string text(Filter filter) {
    return filter != nullptr ? "filter " + std::to_string(filter->number) : "no filter";
}

void writeDown(const std::string& line) {
    if (const char* file = std::getenv(STAND_IN_CALLS)) {
        std::ofstream(file, std::ios::app) << line << '\n';
    }
}

template <typename First, typename... Others>
std::string call(const char* function, const First& first, const Others&... others) {
    return std::string(function) + "(" + text(first) + ((", " + text(others)) + ... + ")");
}

/// Half of the colour, a quarter of the albedo and an eighth of the normal.
void mix(const SharedImage& color, const SharedImage& albedo, const SharedImage& normal, const SharedImage& output) {
    for (std::size_t y = 0; y < color.height; ++y) {
        for (std::size_t x = 0; x < color.width; ++x) {
            for (std::size_t channel = 0; channel < 3; ++channel) {
                output.write(x, y, channel,
                             color.read(x, y, channel) * 0.5F + albedo.read(x, y, channel) * 0.25F +
                                 normal.read(x, y, channel) * 0.125F);
            }
        }
    }
}

} // namespace

extern "C" {

Device oidnNewDevice(int type) {
    const bool fails = failsAt("device") || (type == DEVICE_TYPE_CPU && failsAt("processor"));
    Device device = fails ? nullptr : new OIDNDeviceImpl{++deviceCount, type};
    writeDown(call("oidnNewDevice", type) + " = " + text(device));
    return device;
}

void oidnCommitDevice(Device device) {
    writeDown(call("oidnCommitDevice", device));
    failsAt("commit");
}

/// Asking for the error clears it. An error without a text gives a null pointer, and so does none.
int oidnGetDeviceError(Device device, const char** message) {
    static std::string given;
    const int code = errorPending ? ERROR_UNKNOWN : ERROR_NONE;
    given = errorText;
    *message = errorPending && !given.empty() ? given.c_str() : nullptr;
    errorPending = false;
    writeDown(call("oidnGetDeviceError", device) + " = " + text(code));
    return code;
}

void oidnReleaseDevice(Device device) {
    writeDown(call("oidnReleaseDevice", device));
    delete device;
}

Filter oidnNewFilter(Device device, const char* type) {
    Filter filter = failsAt("filter") ? nullptr : new OIDNFilterImpl{++filterCount, {}};
    writeDown(call("oidnNewFilter", device, type) + " = " + text(filter));
    return filter;
}

void oidnSetSharedFilterImage(Filter filter, const char* name, void* pixels, int format, std::size_t width,
                              std::size_t height, std::size_t byteOffset, std::size_t bytePixelStride,
                              std::size_t byteRowStride) {
    writeDown(call("oidnSetSharedFilterImage", filter, name, static_cast<const void*>(pixels), format, width, height,
                   byteOffset, bytePixelStride, byteRowStride));
    filter->images[name] = {static_cast<unsigned char*>(pixels) + byteOffset, width, height, bytePixelStride,
                            byteRowStride};
}

#if STAND_IN_VERSION == 1

void oidnSetFilter1b(Filter filter, const char* name, bool value) {
    writeDown(call("oidnSetFilter1b", filter, name, value));
}

void oidnSetFilter1i(Filter filter, const char* name, int value) {
    writeDown(call("oidnSetFilter1i", filter, name, value));
}

#else

void oidnSetFilterBool(Filter filter, const char* name, bool value) {
    writeDown(call("oidnSetFilterBool", filter, name, value));
}

void oidnSetFilterInt(Filter filter, const char* name, int value) {
    writeDown(call("oidnSetFilterInt", filter, name, value));
}

/// The one value asked for: whether the device can read the memory of the system.
bool oidnGetDeviceBool(Device device, const char* name) {
    const bool value = device->type == DEVICE_TYPE_CPU || std::getenv(STAND_IN_OWN_MEMORY) == nullptr;
    writeDown(call("oidnGetDeviceBool", device, name) + " = " + text(value));
    return value;
}

#endif

void oidnCommitFilter(Filter filter) {
    writeDown(call("oidnCommitFilter", filter));
}

void oidnExecuteFilter(Filter filter) {
    writeDown(call("oidnExecuteFilter", filter));
    if (!failsAt("execution")) {
        mix(filter->images["color"], filter->images["albedo"], filter->images["normal"], filter->images["output"]);
    }
}

void oidnReleaseFilter(Filter filter) {
    writeDown(call("oidnReleaseFilter", filter));
    delete filter;
}
}
