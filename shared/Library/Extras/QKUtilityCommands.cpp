// The part of QKUtility that runs programs.

#include "platform/base/bundle/Bundle.h"
#include "platform/base/process/DetachedProcess.h"
#include "platform/base/process/Environment.h"
#include "platform/base/process/Task.h"
#include "shared/Library/Extras/QKUtility.h"
#include "system/TextNumber.h"

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

} // namespace

std::string QKUtility::runCommand(const std::filesystem::path& command,
    const std::vector<std::string>& withArguments,
    const std::optional<std::filesystem::path>& currentDirectoryPath,
    std::int32_t* terminationStatus)
{
    Task task({.launchPath = command,
        .arguments = withArguments,
        .environment = Environment::ours(),
        .currentDirectory = currentDirectoryPath.value_or(std::filesystem::path()),
        .input = Task::Input::emptyPipe,
        .output = Task::Output::standardErrorIsOurs});
    std::string output;
    task.launch();
    task.readToEndOfOutput([&](std::string_view bytes) { output += bytes; });
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
