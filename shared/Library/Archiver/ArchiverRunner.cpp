// The tool runner: one tool after another, its output turned into progress.

#include "platform/base/files/SearchPaths.h"
#include "platform/base/process/Task.h"
#include "shared/Library/Archiver/Archiver.h"
#include "shared/Library/Archiver/DataArchiverConvenience.h"
#include "system/Utf8.h"

#include <algorithm>

std::optional<std::string> Archiver::runCommand(const std::optional<Path>& command,
    const std::vector<std::string>& withArguments, const std::optional<Path>& currentDirectoryPath,
    int* terminationStatus)
{
    const bool wasCancelled = _cancelFlag; // in an earlier step, after which this one still runs
    Task& task = _makeTask(command.value_or(Path()), withArguments, currentDirectoryPath);
    task.launch();
    if (_cancelFlag && !wasCancelled)
        task.interrupt(); // it was asked for when there was nothing yet to interrupt
    std::optional<std::string> result;
    if (_delegate) {
        Task::Watch watch{.look = _delegate->toolIsRunning, .next = _nextLook};
        task.readUntilExit([&](std::string_view chunk) { taskDataAvailable(chunk); },
            watch.look ? &watch : nullptr);
        _nextLook = watch.next;
        if (_delegate->taskCompletedWithStatusCode)
            _delegate->taskCompletedWithStatusCode(task.terminationStatus());
    } else {
        result.emplace();
        task.readUntilExit([&](std::string_view chunk) { *result += chunk; });
        if (terminationStatus != nullptr)
            *terminationStatus = task.terminationStatus();
    }
    const std::lock_guard lock(_taskMutex);
    _task.reset();
    return result;
}

Task& Archiver::_makeTask(const Path& launchPath, const std::vector<std::string>& arguments,
    const std::optional<Path>& currentDirectory)
{
    auto task = std::make_unique<Task>(Task::Setup{.launchPath = launchPath,
        .arguments = arguments,
        .environment = {"TMPDIR=" + SearchPaths::temporaryDirectory().native()},
        .currentDirectory = currentDirectory.value_or(Path())});
    const std::lock_guard lock(_taskMutex);
    _task = std::move(task);
    return *_task;
}

void Archiver::taskDataAvailable(std::string_view chunk) const
{
    if (!_delegate)
        return;
    if (_delegate->toolOutput)
        _delegate->toolOutput(chunk);
    if (_delegate->archiverDidAddFile) {
        if (const auto name = _filenameFromData(chunk))
            _delegate->archiverDidAddFile(*name);
    } else if (_delegate->progressBy) {
        if (const int lines = DataArchiverConvenience::numberOfLines(chunk); lines > 0)
            _delegate->progressBy(lines);
    }
}

std::optional<std::string> Archiver::_filenameFromData(std::string_view data)
{
    constexpr std::string_view added = "adding: ";
    if (!Utf8::isAscii(data))
        return std::nullopt;
    if (const auto position = data.find(added); position != std::string_view::npos)
        return std::string(data.substr(position + added.size()));

    for (const std::string_view copied : {"copying file ", "copying symlink "}) {
        const auto position = data.find(copied);
        if (position == std::string_view::npos)
            continue;
        // The chunk without its last character, normally a line feed. Where anything precedes the
        // marker there is a placeholder instead of the name; that is intended.
        if (position > 0)
            return "foo";
        data.remove_prefix(copied.size());
        return std::string(data.substr(0, data.size() - std::min<std::size_t>(data.size(), 1)));
    }
    return std::nullopt;
}
