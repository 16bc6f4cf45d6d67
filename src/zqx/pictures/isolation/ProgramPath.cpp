// Each system has its own way of telling a program where it is.
#include "zqx/pictures/isolation/ProgramPath.h"

#include <array>
#include <system_error>

#if defined(_WIN32)
#include <windows.h>
#elif defined(__APPLE__)
#include <mach-o/dyld.h>
#endif

namespace zqx::pictures {

namespace fs = std::filesystem;

fs::path programDirectory() {
#if defined(_WIN32)
    std::array<wchar_t, 4096> path{};
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return length < path.size() ? fs::path(path.data()).parent_path() : fs::path();
#elif defined(__APPLE__)
    std::array<char, 4096> path{};
    auto size = static_cast<std::uint32_t>(path.size());
    std::error_code failure;
    return _NSGetExecutablePath(path.data(), &size) == 0 ? fs::canonical(path.data(), failure).parent_path()
                                                         : fs::path();
#else
    std::error_code failure;
    return fs::read_symlink("/proc/self/exe", failure).parent_path();
#endif
}

} // namespace zqx::pictures
