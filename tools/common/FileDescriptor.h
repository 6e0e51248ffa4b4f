#pragma once

#include <utility>

#include <unistd.h>

// Owns one open file descriptor; -1 is none.
class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor)
        : _descriptor(descriptor)
    {
    }
    FileDescriptor(FileDescriptor&& other) noexcept
        : _descriptor(std::exchange(other._descriptor, -1))
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(_descriptor, other._descriptor);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { close(); }

    [[nodiscard]] int get() const { return _descriptor; }
    explicit operator bool() const { return _descriptor >= 0; }

    // Gives the descriptor up to the caller.
    [[nodiscard]] int release() { return std::exchange(_descriptor, -1); }

    // Closes at once; false, with errno, when the system reports a late error of a write.
    bool close() { return _descriptor < 0 || ::close(std::exchange(_descriptor, -1)) == 0; }

private:
    int _descriptor = -1;
};
