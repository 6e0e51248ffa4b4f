// One archive, for the window as for the command line. It is made in a private folder inside the
// one where it is to stand, and takes the place of an older archive in one rename at the end: when
// the job was not stopped and its tools made an archive, be it one that lacks files which they
// named. Otherwise what stood there stands as it was, and so does a file that somebody else has put
// there meanwhile. The engine does the work; the job prepares it, gathers what is said and judges.
//
// run() works on the calling thread; the other operations may be called by any thread meanwhile.
#pragma once

#include "app/job/ArchivePlace.h"
#include "app/job/ToolMessages.h"
#include "platform/base/files/ScratchFolder.h"
#include "shared/Library/Archiver/Archiver.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

class ArchiveJob
{
public:
    using Path = std::filesystem::path;

    struct Request {
        std::vector<Path> items; // absolute
        Path archive; // absolute, ending in the extension of its type
        int type = ArchiveTypePlainZip;
        int compressionLevel = 6;
        bool excludeDSStore = true;
        std::optional<std::string> password = std::nullopt;
    };

    // On the thread that runs the job; an empty one is not called.
    struct Events {
        std::function<void(int count)> setNumberOfFiles = {};
        std::function<void(int lines)> progressBy = {};
        // The outcome is settled, and nothing can stop it any more. As the engine gives it: 0, or 1
        // for a plain zip that was cancelled. Not sent when the engine could not go on.
        std::function<void(int status)> completedWithStatus = {};
    };

    struct Result {
        // Where the archive stands, or would: next to a file that came in its place. Without a
        // reason there always is one.
        std::optional<Path> archive = std::nullopt;
        bool isMade = false; // by this job
        bool isWhole = false; // and nothing was left out
        // Why the engine could not begin or go on, or its archive not be put in place; empty also
        // when a tool failed or the job was stopped, of which the messages tell.
        std::string reason = {};
        // A line each: what is missing and why, what has got another name, what the tools said.
        std::vector<std::string> messages = {};
    };

    // The engine is borrowed, and this job's alone while it runs.
    ArchiveJob(Archiver& engine, Request request, Events events);
    ArchiveJob(const ArchiveJob&) = delete;
    ArchiveJob& operator=(const ArchiveJob&) = delete;

    // Once.
    [[nodiscard]] Result run();

    // For the user: the running tool is interrupted and nothing is delivered.
    void cancel();

    // For a program that ends: as cancel(), but at once. To be called again until run() has
    // returned: a tool that does not heed the first call is killed by a later one.
    void abandon();

    [[nodiscard]] bool isAbandoned() const { return _abandoning.stop_requested(); }

    // Waits for that time, or until the job is abandoned.
    void sleepFor(std::chrono::duration<double> time) const;

private:
    enum class Stop { none, asked, tooLate };

    [[nodiscard]] std::string _obstacle() const;
    void _make();
    void _makeIn(const Path& folder);
    [[nodiscard]] std::vector<Path> _distinctItems(std::optional<ScratchFolder>& links);
    [[nodiscard]] bool _makeLink(const Path& link, const Path& toItem);
    [[nodiscard]] ArchiverDelegate _delegate();
    void _noteStatus(int status);
    void _noteLeftOut(const Path& item, std::error_code reason);
    void _heedStop();
    void _deliver(const Path& made);

    Archiver& _engine;
    const Request _request;
    const Events _events;
    Result _result;
    ToolMessages _messages;
    ArchivePlace _place;
    std::optional<int> _engineStatus; // of its completion
    bool _hasFailed = false; // a tool did: what it made is not worth keeping
    bool _hasLeftOut = false; // something, which is said

    std::atomic<Stop> _stop = Stop::none; // the one state that tells how far the job is to go
    std::stop_source _abandoning; // once it was asked to stop, that there is no time, either
};
