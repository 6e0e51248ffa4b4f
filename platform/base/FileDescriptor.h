#pragma once

#include <cerrno>
#include <utility>

#include <unistd.h>

// Owns one open file descriptor and closes it. Whoever opens it asks for O_CLOEXEC.
class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number)
        : _number(number)
    {
    }
    FileDescriptor(FileDescriptor&& other) noexcept
        : _number(std::exchange(other._number, -1))
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        close();
        _number = std::exchange(other._number, -1);
        return *this;
    }
    ~FileDescriptor() { close(); }

    [[nodiscard]] int number() const { return _number; }
    explicit operator bool() const { return _number >= 0; }
    void close()
    {
        if (_number >= 0)
            ::close(std::exchange(_number, -1));
    }

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
