// Makes one archive without a window: checks what is asked for, runs the engine on a worker thread
// while the calling (main) thread serves deferred blocks, signals and the progress bar, then judges
// what came of it. Unlike the engine it cares for what the tools reported: an archive stays only
// when it is complete, or lacks nothing but items that were named in a warning.
#pragma once

#include "app/commandline/CommandLine.h"
#include "app/commandline/RunLoop.h"
#include "app/commandline/TerminalProgress.h"
#include "app/job/ToolMessages.h"
#include "platform/base/process/InterruptSignals.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

class CommandLineJob
{
public:
    explicit CommandLineJob(CommandLine line);

    // The program's exit status. Throws what keeps it from beginning: ScratchFolderFailure and
    // std::system_error.
    int run();

private:
    using Path = std::filesystem::path;
    using FileStatus = struct stat;

    bool _hasTool() const;
    bool _resolveFiles();
    [[nodiscard]] bool _canBeStaged() const;
    bool _chooseArchive();
    void _makeArchive(const Path& workingFolder);
    ArchiverDelegate _delegate();
    void _noteStatus(int status);
    void _abandonUntilEnded(Archiver& archiver);
    void _drawUntilEnded();
    [[nodiscard]] bool _isMade() const;
    int _report();

    const CommandLine _line;
    std::vector<Path> _files; // absolute
    Path _folder;
    std::string _name;
    Path _archive;
    std::optional<FileStatus> _former; // what was at the archive's path before

    // Filled by the worker, read by the main thread when the worker has ended.
    ToolMessages _messages;
    std::string _failure; // why the engine gave up
    bool _hasFailed = false; // a tool did: the archive is not worth keeping
    bool _hasSkipped = false; // something was left out, which is said

    // The main thread's own.
    InterruptSignals _signals;
    RunLoop _loop;
    TerminalProgress _progress;
    bool _isEnded = false;
    bool _isInterrupted = false;
};
