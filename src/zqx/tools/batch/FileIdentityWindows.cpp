// On Windows, files are identified by the serial number of the volume and the file index.
#include "zqx/tools/batch/FileIdentity.h"

#define NOMINMAX
#include <windows.h>

namespace zqx::tools {

std::optional<FileIdentity> identify(const std::filesystem::path& path) {
    constexpr DWORD NO_ACCESS = 0; // attributes can be queried while others write to the file
    constexpr DWORD SHARED = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE file = CreateFileW(path.c_str(), NO_ACCESS, SHARED, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS,
                                    nullptr); // the flag allows folders
    if (file == INVALID_HANDLE_VALUE) {
        return std::nullopt;
    }
    BY_HANDLE_FILE_INFORMATION information{};
    const bool known = GetFileInformationByHandle(file, &information) != 0;
    CloseHandle(file);
    if (!known) {
        return std::nullopt;
    }
    return FileIdentity{information.dwVolumeSerialNumber,
                        std::uint64_t{information.nFileIndexHigh} << 32 | information.nFileIndexLow};
}

} // namespace zqx::tools
