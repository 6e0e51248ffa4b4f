#pragma once

#include <utility>

#include <unistd.h>

// Owns one open file descriptor; -1 is none.
class OpenDescriptor
{
public:
    OpenDescriptor() = default;
    explicit OpenDescriptor(int descriptor)
        : _descriptor(descriptor)
    {
    }
    OpenDescriptor(OpenDescriptor&& other) noexcept
        : _descriptor(std::exchange(other._descriptor, -1))
    {
    }
    OpenDescriptor& operator=(OpenDescriptor&& other) noexcept
    {
        std::swap(_descriptor, other._descriptor);
        return *this;
    }
    OpenDescriptor(const OpenDescriptor&) = delete;
    OpenDescriptor& operator=(const OpenDescriptor&) = delete;
    ~OpenDescriptor() { close(); }

    [[nodiscard]] int get() const { return _descriptor; }
    explicit operator bool() const { return _descriptor >= 0; }

    // Gives the descriptor up to the caller.
    [[nodiscard]] int release() { return std::exchange(_descriptor, -1); }

    // Closes at once; false, with errno, when the system reports a late error of a write.
    bool close() { return _descriptor < 0 || ::close(std::exchange(_descriptor, -1)) == 0; }

private:
    int _descriptor = -1;
};
