// What systems do differently with files. There is one source for each system; the rest of the folder is the same
// everywhere.
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

/// A file that was opened for reading. What kind it is, the open file tells and not its name, which may mean another
/// one by now.
struct OpenedFile {
    Stream stream; ///< none for directories and sockets
    FileKind kind = FileKind::REGULAR;
    std::uint64_t size = 0; ///< in bytes, of regular files
};

/// Opens a file without waiting for anybody, not even for the other end of a pipe.
OpenedFile openForReading(const std::string& name, std::error_code& failure);

/// The same for a file that is open already. It is closed with the stream, and at once on a failure.
OpenedFile adoptForReading(int descriptor, std::error_code& failure);

/// A regular file as memory, which is read when it is looked at and outlives the stream; null where that cannot be had.
std::shared_ptr<const unsigned char> mapForReading(std::FILE* stream, std::uint64_t size);

/// Waits until a pipe has something to read, or its last writer is gone.
void waitForInput(std::FILE* pipe);

/// Positions beyond 2 GiB, whatever the width of long. False when the position cannot be reached.
bool seekStream(std::FILE* stream, std::int64_t offset, int origin);
/// -1 for streams without positions.
std::int64_t tellStream(std::FILE* stream);

/// Creates a file that is not there yet, for writing, with the permissions of another file if that is there.
Stream createFile(const std::string& name, const std::string& model, std::error_code& failure);

/// Tells other processes that a temporary file is in use, for as long as this lives and this process does.
class UseLock {
public:
    UseLock() = default;
    explicit UseLock(std::FILE* stream);
    explicit UseLock(const std::string& name);
    UseLock(UseLock&& other) noexcept;
    UseLock& operator=(UseLock&& other) noexcept;
    ~UseLock();

private:
    int mDescriptor = -1; // none where there is nothing to lock
};

/// Removes a regular file of this user that has not been written to for so long, and that nobody has locked.
void removeIfAbandoned(const std::string& name, std::chrono::seconds age);

void removeFile(const std::string& name);

/// Writes what is buffered and waits until the device has it. False with errno on a failure.
bool storeDurably(std::FILE* stream);

/// Waits until the device has the names in a folder. Systems that cannot do that succeed.
std::error_code storeFolder(const std::string& folder);

/// Whether the process may write a file, or, for a folder, make and rename files in it. False with errno.
bool isWritable(const std::string& name, bool isFolder);

/// Renames a file, replacing what has the name.
std::error_code renameOver(const std::string& from, const std::string& to);

/// Renames a file. std::errc::file_exists when the name is taken.
std::error_code renameToNew(const std::string& from, const std::string& to);

/// Gives a file a second name.
std::error_code linkFile(const std::string& name, const std::string& second);

} // namespace zqx::pictures
