// Makes one archive without a window: checks what is asked for, runs the job on a worker thread
// while the calling (main) thread serves deferred blocks, signals and the progress bar, then tells
// what came of it.
#pragma once

#include "app/commandline/CommandLine.h"
#include "app/commandline/RunLoop.h"
#include "app/commandline/TerminalProgress.h"
#include "app/job/ArchiveJob.h"
#include "platform/base/process/InterruptSignals.h"

#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

class CommandLineJob
{
public:
    explicit CommandLineJob(CommandLine line);

    // The program's exit status. Throws what keeps it from beginning: ScratchFolderFailure and
    // std::system_error.
    int run();

private:
    using Path = std::filesystem::path;

    bool _resolveFiles();
    bool _chooseArchive();
    [[nodiscard]] bool _readPassword();
    [[nodiscard]] ArchiveJob::Request _request() const;
    [[nodiscard]] ArchiveJob::Events _events();
    void _makeArchive(const Path& workingFolder);
    void _abandonUntilEnded(ArchiveJob& job);
    void _drawUntilEnded();

    const CommandLine _line;
    std::vector<Path> _files; // absolute
    Path _archive;
    std::optional<std::string> _password;
    ArchiveJob::Result _result; // filled by the worker, read when that has ended

    InterruptSignals _signals;
    RunLoop _loop;
    TerminalProgress _progress;
    bool _isEnded = false;
    std::stop_source _interrupted;
};
