#include "system/OpenImageDenoise.h"

#include <array>
#include <filesystem>
#include <system_error>

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace zqx::img {

namespace {

namespace fs = std::filesystem;

// The names carry the major version wherever that is the custom: another one may have another interface.
#if defined(_WIN32)
constexpr std::array LIBRARY_NAMES = {"OpenImageDenoise.dll"};
constexpr const char* THREADING_LIBRARY = "tbb12.dll";
#elif defined(__APPLE__)
constexpr std::array LIBRARY_NAMES = {"libOpenImageDenoise.1.dylib", "libOpenImageDenoise.2.dylib"};
constexpr const char* THREADING_LIBRARY = "libtbb.12.dylib";
#else
constexpr std::array LIBRARY_NAMES = {"libOpenImageDenoise.so.1", "libOpenImageDenoise.so.2"};
constexpr const char* THREADING_LIBRARY = "libtbb.so.12";
#endif

/// A library of the system's loader. It is never unloaded: its worker threads outlive every call.
class LoadedLibrary {
public:
    explicit LoadedLibrary(const fs::path& name);

    explicit operator bool() const { return mHandle != nullptr; }
    const std::string& error() const { return mError; }

    /// Sets the function, or leaves it null where the library has none of that name.
    template <typename Function>
    bool find(const char* name, Function*& function) const {
        function = reinterpret_cast<Function*>(address(name));
        return function != nullptr;
    }

private:
    void* address(const char* name) const;

    void* mHandle;
    std::string mError;
};

fs::path ownDirectory();

#if defined(_WIN32)

LoadedLibrary::LoadedLibrary(const fs::path& name)
    : mHandle(name.has_parent_path() ? LoadLibraryExW(name.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)
                                     : LoadLibraryW(name.c_str())) {
    if (mHandle == nullptr) {
        mError = name.filename().string() + ": " + std::system_category().message(static_cast<int>(GetLastError()));
    }
}

void* LoadedLibrary::address(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(mHandle), name));
}

fs::path ownDirectory() {
    HMODULE self = nullptr;
    std::array<wchar_t, 4096> path{};
    const auto inside = reinterpret_cast<const wchar_t*>(&ownDirectory);
    const DWORD how = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (GetModuleHandleExW(how, inside, &self) == 0) {
        return {};
    }
    const DWORD length = GetModuleFileNameW(self, path.data(), static_cast<DWORD>(path.size()));
    return length < path.size() ? fs::path(path.data()).parent_path() : fs::path();
}

#else

LoadedLibrary::LoadedLibrary(const fs::path& name) : mHandle(dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (mHandle == nullptr) {
        mError = dlerror();
    }
}

void* LoadedLibrary::address(const char* name) const {
    return dlsym(mHandle, name);
}

fs::path ownDirectory() {
    Dl_info info{};
    return dladdr(reinterpret_cast<const void*>(&ownDirectory), &info) != 0 ? fs::path(info.dli_fname).parent_path()
                                                                            : fs::path();
}

#endif

/// Version 2 has other names for the two setters, with the same effect.
bool bindSetters(const LoadedLibrary& library, OpenImageDenoise& functions) {
    const bool isVersion1 = library.find("oidnSetFilter1b", functions.setFilterBool) &&
                            library.find("oidnSetFilter1i", functions.setFilterInt);
    return isVersion1 || (library.find("oidnSetFilterBool", functions.setFilterBool) &&
                          library.find("oidnSetFilterInt", functions.setFilterInt) &&
                          library.find("oidnGetDeviceBool", functions.getDeviceBool));
}

bool bindAll(const LoadedLibrary& library, OpenImageDenoise& functions) {
    return library.find("oidnNewDevice", functions.newDevice) &&
           library.find("oidnCommitDevice", functions.commitDevice) &&
           library.find("oidnGetDeviceError", functions.getDeviceError) &&
           library.find("oidnReleaseDevice", functions.releaseDevice) &&
           library.find("oidnNewFilter", functions.newFilter) &&
           library.find("oidnSetSharedFilterImage", functions.setSharedFilterImage) &&
           library.find("oidnCommitFilter", functions.commitFilter) &&
           library.find("oidnExecuteFilter", functions.executeFilter) &&
           library.find("oidnReleaseFilter", functions.releaseFilter) && bindSetters(library, functions);
}

/// Tries one library, and adds to the reasons when it will not do.
bool bindFrom(const fs::path& name, OpenImageDenoise& functions, std::string& reasons) {
    const LoadedLibrary library(name);
    functions = {};
    if (library && bindAll(library, functions)) {
        return true;
    }
    reasons += (reasons.empty() ? "" : "; ");
    reasons += library ? name.string() + ": lacks functions of the interface" : library.error();
    return false;
}

/// A file in the own directory. The denoiser's own search path leads to a folder called lib, and misses what it needs
/// when the two lie side by side elsewhere; what is loaded already is found in any case.
bool bindBeside(const fs::path& file, OpenImageDenoise& functions, std::string& reasons) {
    std::error_code failure;
    if (!fs::exists(file, failure)) {
        return false;
    }
    const fs::path threading = file.parent_path() / THREADING_LIBRARY;
    if (fs::exists(threading, failure)) {
        const LoadedLibrary loaded(threading);
    }
    return bindFrom(file, functions, reasons);
}

} // namespace

OpenImageDenoise::Device OpenImageDenoise::makeDevice() const {
    Device device = newDevice(DEVICE_TYPE_DEFAULT);
    if (device == nullptr) {
        return nullptr;
    }
    commitDevice(device);
    if (getDeviceBool != nullptr && !getDeviceBool(device, "systemMemorySupported")) {
        releaseDevice(device);
        device = newDevice(DEVICE_TYPE_CPU);
        if (device != nullptr) {
            commitDevice(device);
        }
    }
    return device;
}

std::optional<OpenImageDenoise> OpenImageDenoise::load(std::string& error) {
    OpenImageDenoise functions{};
    std::string reasons;
    const fs::path beside = ownDirectory();
    for (const char* name : LIBRARY_NAMES) {
        if (bindFrom(name, functions, reasons) || bindBeside(beside / name, functions, reasons)) {
            return functions;
        }
    }
    error = "Denoising needs OpenImageDenoise, version 1 or 2: install it, or put its libraries beside this one (" +
            reasons + ").";
    return std::nullopt;
}

} // namespace zqx::img
