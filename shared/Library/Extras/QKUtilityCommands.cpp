// The part of QKUtility that runs programs.

#include "platform/base/bundle/Bundle.h"
#include "platform/base/bundle/TextNumber.h"
#include "platform/base/process/DetachedProcess.h"
#include "platform/base/process/Task.h"
#include "shared/Library/Extras/QKUtility.h"

#include <QCoreApplication>
#include <QDebug>

#include <algorithm>

#include <unistd.h>

namespace
{

// quit() would ask the windows, which may refuse.
QKUtility::Terminator& terminator()
{
    static QKUtility::Terminator current = [] { QCoreApplication::exit(); };
    return current;
}

std::vector<std::string> ourEnvironment()
{
    std::vector<std::string> entries;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry)
        entries.emplace_back(*entry);
    return entries;
}

} // namespace

std::string QKUtility::runCommand(const std::filesystem::path& command,
    const std::vector<std::string>& withArguments,
    const std::optional<std::filesystem::path>& currentDirectoryPath,
    std::int32_t* terminationStatus)
{
    Task task({.launchPath = command,
        .arguments = withArguments,
        .environment = ourEnvironment(),
        .currentDirectory = currentDirectoryPath.value_or(std::filesystem::path()),
        .input = Task::Input::emptyPipe,
        .output = Task::Output::standardErrorIsOurs});
    std::string output;
    task.launch();
    task.readToEndOfOutput([&](Task::Stream, std::string_view bytes) { output += bytes; });
    if (terminationStatus != nullptr)
        *terminationStatus = task.terminationStatus();
    return output;
}

std::string QKUtility::runCommand(
    const std::filesystem::path& command, const std::vector<std::string>& withArguments)
{
    return runCommand(command, withArguments, std::nullopt, nullptr);
}

void QKUtility::restartApplication()
{
    qWarning("WARNING: Deprecated");
    const DetachedProcess anew({.program = Bundle::executablePath()});
    terminator()();
}

void QKUtility::setTerminator(Terminator newTerminator)
{
    terminator() = std::move(newTerminator);
}

std::int32_t QKUtility::residentSetSize()
try {
    const std::string output = runCommand("/bin/ps", {"-p" + std::to_string(::getpid()), "-orss"});
    std::string digits;
    std::copy_if(output.begin(), output.end(), std::back_inserter(digits),
        [](char byte) { return byte >= '0' && byte <= '9'; });
    return TextNumber::intValue(digits);
} catch (const std::exception&) {
    return 0;
}
