// File operations that differ between systems. There is one source for each system; the rest of the folder is portable.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <system_error>

namespace zqx::pictures {

struct CloseStream {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

enum class FileKind { REGULAR, DIRECTORY, PIPE, SOCKET, DEVICE };

/// A file that was opened for reading. Its kind is that of the open file, not of its name, which may denote another
/// file by now.
struct OpenedFile {
    Stream stream; ///< none for directories and sockets
    FileKind kind = FileKind::REGULAR;
    std::uint64_t size = 0; ///< in bytes, of regular files
};

/// Opens a file without blocking, even if it is a pipe without a writer.
OpenedFile openForReading(const std::string& name, std::error_code& failure);

/// The same for a descriptor that is open already. It is closed with the stream, or at once on a failure.
OpenedFile adoptForReading(int descriptor, std::error_code& failure);

/// Maps a regular file into memory, where it stays after the stream is closed. Null on failure.
std::shared_ptr<const unsigned char> mapForReading(std::FILE* stream, std::uint64_t size);

/// Waits until a pipe has data, or its last writer has closed it.
void waitForInput(std::FILE* pipe);

/// Like fseek, but beyond 2 GiB whatever the width of long. False on failure.
bool seekStream(std::FILE* stream, std::int64_t offset, int origin);
/// Like ftell, but beyond 2 GiB. -1 for streams that cannot seek.
std::int64_t tellStream(std::FILE* stream);

/// Creates a new file for writing, with the permissions of the model if that file exists.
Stream createFile(const std::string& name, const std::string& model, std::error_code& failure);

/// Marks a temporary file as in use to other processes, until this object is destroyed or the process ends.
class UseLock {
public:
    UseLock() = default;
    explicit UseLock(std::FILE* stream);
    explicit UseLock(const std::string& name);
    UseLock(UseLock&& other) noexcept;
    UseLock& operator=(UseLock&& other) noexcept;
    ~UseLock();

private:
    int mDescriptor = -1; // -1 if there is no lock
};

/// Removes a regular file of this user if it has not been modified for some time and no process has locked it.
void removeIfAbandoned(const std::string& name, std::chrono::seconds age);

void removeFile(const std::string& name);

/// Flushes a stream to the device. False with errno on failure.
bool storeDurably(std::FILE* stream);

/// Flushes the entries of a folder to the device. Succeeds on systems that cannot do this.
std::error_code storeFolder(const std::string& folder);

/// Whether the process may write a file or, for a folder, create and rename files in it. If not, errno says why.
bool isWritable(const std::string& name, bool isFolder);

/// Renames a file and replaces an existing one.
std::error_code renameOver(const std::string& from, const std::string& to);

/// Renames a file. std::errc::file_exists if the new name is taken.
std::error_code renameToNew(const std::string& from, const std::string& to);

/// Creates a hard link.
std::error_code linkFile(const std::string& name, const std::string& second);

} // namespace zqx::pictures
