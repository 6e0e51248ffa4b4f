#include "app/commandline/RunLoop.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>

RunLoop::RunLoop()
    : _wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!_wake)
        throw std::system_error(errno, std::generic_category(), "cannot make an event descriptor");
}

void RunLoop::submitAfter(std::chrono::nanoseconds delay, Block block)
{
    const auto now = Clock::now();
    const auto longest = Clock::time_point::max() - now;
    const std::lock_guard lock(_mutex);
    _blocks.emplace(now + std::clamp<Clock::duration>(delay, Clock::duration::zero(), longest),
        std::move(block));
    const std::uint64_t one = 1;
    (void)::write(_wake.number(), &one, sizeof one); // can fail only when it is readable anyway
}

void RunLoop::watch(int descriptor, Block onReadable)
{
    _watched = descriptor;
    _onReadable = std::move(onReadable);
}

void RunLoop::runUntil(const std::function<bool()>& done)
{
    while (!done()) {
        if (const auto block = _nextDue())
            (*block)();
        else
            _wait();
    }
}

std::optional<RunLoop::Block> RunLoop::_nextDue()
{
    const std::lock_guard lock(_mutex);
    if (_blocks.empty() || _blocks.begin()->first > Clock::now())
        return std::nullopt;
    return std::move(_blocks.extract(_blocks.begin()).mapped());
}

// Waits until the first block is due, a block is submitted or the descriptor can be read.
void RunLoop::_wait()
{
    std::optional<timespec> timeout;
    {
        const std::lock_guard lock(_mutex);
        if (!_blocks.empty()) {
            const auto left = std::max(_blocks.begin()->first - Clock::now(), Clock::duration{});
            const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
            timeout = timespec{.tv_sec = seconds.count(), .tv_nsec = (left - seconds).count()};
        }
    }
    std::array<pollfd, 2> watched{pollfd{.fd = _wake.number(), .events = POLLIN, .revents = 0},
        pollfd{.fd = _watched, .events = POLLIN, .revents = 0}};
    if (::ppoll(watched.data(), watched.size(), timeout ? &*timeout : nullptr, nullptr) <= 0)
        return;
    std::uint64_t count = 0;
    if (watched[0].revents != 0)
        (void)::read(_wake.number(), &count, sizeof count);
    if (watched[1].revents != 0)
        _onReadable();
}
