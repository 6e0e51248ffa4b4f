// Owns one open file descriptor and closes it. Whoever opens it asks for O_CLOEXEC.
#pragma once

#include <cerrno>
#include <utility>

#include <unistd.h>

class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number)
        : _number(number)
    {
    }
    FileDescriptor(FileDescriptor&& other) noexcept
        : _number(other.release())
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(_number, other._number);
        return *this;
    }
    ~FileDescriptor() { close(); }

    [[nodiscard]] int number() const { return _number; } // -1: none
    explicit operator bool() const { return _number >= 0; }

    // Gives the descriptor up to the caller.
    [[nodiscard]] int release() { return std::exchange(_number, -1); }

    // Closes at once; false, with errno, when the system tells only now that a write has failed.
    bool close() { return _number < 0 || ::close(release()) == 0; }

private:
    int _number = -1;
};

// The result of a system call that is made again when a signal interrupted it.
template <typename Call> auto retryOnInterrupt(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}
