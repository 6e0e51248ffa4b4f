#include "platform/base/process/Task.h"

#include "platform/base/process/SpawnPlan.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>

namespace
{

constexpr std::size_t chunkSize = 65536; // what a pipe holds by default: one read can empty it

// How long a child that nobody waits for any more may clean up before it is killed.
constexpr std::chrono::milliseconds gracePeriod{2000};

// The same for one that may be flushing a large file to a slow disk.
constexpr std::chrono::milliseconds longGracePeriod{5000};

[[noreturn]] void fail(const std::string& what, int reason)
{
    throw LaunchFailure("cannot " + what + ": " + std::strerror(reason));
}

struct PipeEnds {
    FileDescriptor reading;
    FileDescriptor writing;
};

PipeEnds makePipe()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        fail("make a pipe", errno);
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

} // namespace

Task::Task(Setup setup)
    : _setup(std::move(setup))
{
}

Task::~Task()
{
    _stop();
}

void Task::launch()
{
    PipeEnds output = makePipe();
    PipeEnds input = _setup.input == Input::emptyPipe ? makePipe() : PipeEnds();
    input.writing.close();
    const bool isErrorOurs = _setup.output == Output::standardErrorIsOurs;
    _spawn(input.reading.number(), output.writing.number(),
        isErrorOurs ? STDERR_FILENO : output.writing.number());
    _output = std::move(output.reading);
    _exited = FileDescriptor(SpawnPlan::openProcess(_pid));
    if (!_exited) {
        const int reason = errno;
        _signal(SIGKILL);
        _reap();
        fail("watch '" + _setup.launchPath.native() + "'", reason);
    }
}

void Task::_spawn(int standardInput, int standardOutput, int standardError)
{
    SpawnPlan plan({.input = standardInput, .output = standardOutput, .error = standardError},
        SpawnPlan::Group::ofOurSession);
    const auto& folder = _setup.currentDirectory;
    if (!folder.empty())
        plan.setFolder(folder);
    std::vector<std::string> vector = _setup.arguments;
    vector.insert(vector.begin(), _setup.launchPath.native());
    pid_t pid = 0;
    const int reason
        = ::posix_spawn(&pid, _setup.launchPath.c_str(), plan.actions(), plan.attributes(),
            SpawnPlan::pointers(vector).data(), SpawnPlan::pointers(_setup.environment).data());
    if (reason == 0) {
        const std::lock_guard lock(_mutex);
        _pid = pid;
        return;
    }
    if (!folder.empty() && ::access((folder / ".").c_str(), X_OK) != 0)
        fail("work in '" + folder.native() + "'", errno);
    fail("run '" + _setup.launchPath.native() + "'", reason);
}

void Task::readUntilExit(const ChunkHandler& onChunk, Watch* watch)
{
    _read(_exited.number(), onChunk, watch);
}

void Task::readToEndOfOutput(const ChunkHandler& onChunk)
{
    _read(-1, onChunk, nullptr);
}

// Until the process has ended that the descriptor stands for; without one, until the output has.
void Task::_read(int exitDescriptor, const ChunkHandler& onChunk, Watch* watch)
try {
    std::vector<char> buffer(chunkSize);
    pollfd watched[] = {{.fd = -1, .events = POLLIN, .revents = 0},
        {.fd = exitDescriptor, .events = POLLIN, .revents = 0}};
    auto& [output, exited] = watched;
    while (exited.revents == 0 && (_output || exitDescriptor >= 0)) {
        output.fd = _output.number(); // -1, which is skipped, at its end
        const int milliseconds = _lookAndWait(watch);
        retryOnInterrupt([&] { return ::poll(watched, std::size(watched), milliseconds); });
        if (output.revents != 0 && exited.revents == 0)
            _readChunk(buffer, onChunk);
    }
    _drain(buffer, onChunk);
    _reap();
} catch (...) {
    _stop();
    throw;
}

// How long to wait until it is time for another look, as poll() takes it.
int Task::_lookAndWait(Watch* watch) const
{
    if (watch == nullptr)
        return -1;
    const auto now = std::chrono::steady_clock::now();
    if (now >= watch->next) {
        watch->next = now + watch->interval;
        watch->look(_pid);
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(watch->next - now);
    return static_cast<int>(left.count());
}

// Fills at most the buffer, waiting for the first byte, and closes the pipe at its end.
void Task::_readChunk(std::span<char> buffer, const ChunkHandler& onChunk)
{
    const ssize_t count
        = retryOnInterrupt([&] { return ::read(_output.number(), buffer.data(), buffer.size()); });
    if (count > 0)
        onChunk({buffer.data(), static_cast<std::size_t>(count)});
    else
        _output.close();
}

// Reads what the child wrote before it ended, and not until the end of the pipe: a process that it
// left behind may keep that open, and even write to it, for ever.
void Task::_drain(std::span<char> buffer, const ChunkHandler& onChunk)
{
    int available = 0;
    if (!_output || ::ioctl(_output.number(), FIONREAD, &available) != 0)
        return;
    auto left = static_cast<std::size_t>(available);
    const auto countDown = [&](std::string_view bytes) {
        left -= bytes.size();
        onChunk(bytes);
    };
    while (left > 0 && _output)
        _readChunk(buffer.first(std::min(left, buffer.size())), countDown);
    _output.close();
}

bool Task::isRunning() const
{
    const std::lock_guard lock(_mutex);
    return _pid != 0;
}

void Task::interrupt()
{
    _signal(SIGINT);
}

void Task::terminate()
{
    const auto now = std::chrono::steady_clock::now();
    bool kills = false;
    {
        const std::lock_guard lock(_mutex);
        if (!_killTime)
            _killTime = now + longGracePeriod;
        kills = now >= *_killTime;
    }
    _signal(kills ? SIGKILL : SIGINT);
}

int Task::terminationStatus() const
{
    const std::lock_guard lock(_mutex);
    return _status;
}

void Task::_signal(int number)
{
    const std::lock_guard lock(_mutex);
    if (_pid != 0)
        ::kill(-_pid, number);
}

// Waits for the end without reaping, so that the mutex is held, and the process identifier still
// the child's, when it is reaped.
void Task::_reap()
{
    siginfo_t ended;
    retryOnInterrupt(
        [&] { return ::waitid(P_PID, static_cast<id_t>(_pid), &ended, WEXITED | WNOWAIT); });
    const std::lock_guard lock(_mutex);
    int status = 0;
    retryOnInterrupt([&] { return ::waitpid(_pid, &status, 0); });
    _status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    _pid = 0;
}

void Task::_stop()
{
    if (!isRunning())
        return;
    _output.close(); // it may be waiting for someone to read
    interrupt();
    pollfd exited{.fd = _exited.number(), .events = POLLIN, .revents = 0};
    const auto wait = static_cast<int>(gracePeriod.count());
    if (retryOnInterrupt([&] { return ::poll(&exited, 1, wait); }) <= 0)
        _signal(SIGKILL);
    _reap();
}
