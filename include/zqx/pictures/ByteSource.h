/// @file
/// The bytes of an open file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <zqx/pictures/Export.h>

namespace zqx::pictures {

/// A file that was opened once, whose bytes can be read in any order. It stays the same file, whatever becomes of its
/// name meanwhile. One thread at a time.
/// @ingroup pictures
class ZQX_PICTURES_EXPORT ByteSource {
public:
    ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;
    virtual ~ByteSource();

    /// What it is called in messages: the file's name, in UTF-8.
    virtual const std::string& name() const = 0;

    /// Bytes in the file when it was opened.
    virtual std::uint64_t size() const = 0;

    /// Reads bytes from a place in the file.
    /// @param offset of the first one
    /// @param bytes where they go
    /// @param count how many are wanted
    /// @return how many there were: fewer where the file ends or cannot be read
    virtual std::size_t readAt(std::uint64_t offset, char* bytes, std::size_t count) = 0;

    /// The whole file as memory that is read from the file when it is looked at; it may be kept longer than this
    /// object. Null where the system cannot do that. Not for files that somebody may cut short meanwhile: looking at
    /// what is gone is a fault.
    virtual std::shared_ptr<const unsigned char> map() const = 0;

protected:
    /// For derived classes that are handed on.
    ByteSource(ByteSource&&) = default;
    /// For derived classes that are handed on.
    ByteSource& operator=(ByteSource&&) = default;
};

} // namespace zqx::pictures
