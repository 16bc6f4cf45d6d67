// Memory that a process hands to another one, and that nobody else finds.
#pragma once

#include <cstddef>
#include <memory>

namespace zqx::pictures {

class SharedMemory {
public:
    /// An empty one. @throws std::system_error
    SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;
    ~SharedMemory();

    /// What the other process writes to. It is closed when a program is started, unless that is passed on.
    int descriptor() const { return mDescriptor; }

    struct Content {
        std::shared_ptr<std::byte> bytes; ///< a private copy as soon as something is written to it
        std::size_t size = 0;
    };
    /// What was written. From now on nobody can change it, where the system allows that.
    /// @throws std::system_error
    Content content() const;

private:
    int mDescriptor;
};

} // namespace zqx::pictures
