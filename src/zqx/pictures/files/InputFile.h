// A file opened for reading: whole as text, or anywhere in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <system_error>

namespace zqx::pictures {

/// The path of a UTF-8 file name, on every system.
std::filesystem::path toPath(const std::string& name);

/// A file that is there and can be read.
class InputFile {
public:
    /// @throws Error naming the file when it is missing, a directory, or cannot be read
    explicit InputFile(const std::string& name);

    const std::string& name() const { return mName; }

    /// The whole content. @throws Error when there is more than the limit
    std::string readText(std::size_t limit);

    /// Bytes in the file; 0 where it is none of fixed size.
    std::uint64_t size() const;

    /// Up to so many bytes from a place in the file; fewer where it ends.
    std::string readAt(std::uint64_t offset, std::size_t count);

    /// The same into given memory. @return how many bytes there were
    std::size_t readAt(std::uint64_t offset, std::span<char> bytes);

    /// Why the system could not read from the file, if it ever could not.
    const std::error_code& readFailure() const { return mReadFailure; }

private:
    std::string mName;
    std::filebuf mFile;
    std::error_code mReadFailure;
};

/// Opens a picture. Opening a pipe would wait for somebody who writes to it, and nobody can go back in it.
/// @throws Error also for pipes and sockets
InputFile openPicture(const std::string& name);

} // namespace zqx::pictures
