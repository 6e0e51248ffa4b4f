// One archive, for the window as for the command line. It is made in a private folder inside the
// one where it is to stand, and takes the place of an older archive in one rename at the end: when
// the job was not stopped and its tools made an archive, be it one that lacks files which they
// named. Otherwise what stood there stands as it was, and so does a file that somebody else has put
// there meanwhile. The engine does the work; the job prepares it, gathers what is said and judges.
//
// run() works on the calling thread; the other operations may be called by any thread meanwhile.
#pragma once

#include "app/job/ArchivePlace.h"
#include "app/job/ArchiveProblem.h"
#include "app/job/JobProgress.h"
#include "app/job/LeftOut.h"
#include "app/job/ReadProgress.h"
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
        bool mayReplace = true; // what stands there; else the archive gets the next free name
    };

    // On the thread that runs the job; an empty one is not called.
    struct Events {
        std::function<void(int count)> setNumberOfFiles = {};
        std::function<void(int lines)> progressBy = {};
        // How far it is, ten times a second while a tool is at work, and once an archive is made.
        // Costs a look at all items, which a job does without when nobody listens.
        std::function<void(const JobProgress& progress)> progressed = {};
        // The outcome is settled, and nothing can stop it any more: 1 when the job was stopped,
        // else 0, as the engine has it. Not sent when the engine could not go on.
        std::function<void(int status)> completedWithStatus = {};
    };

    struct Result {
        // Where the archive stands, or would: next to a file that came in its place. Nothing when
        // the engine could not begin or go on, or its archive not be put in place.
        std::optional<Path> archive = std::nullopt;
        bool isMade = false; // by this job
        bool isWhole = false; // and nothing was left out
        LeftOut leftOut = {}; // of what was made
        // Why nothing was made; nothing when the job was stopped.
        std::optional<ArchiveProblem> problem = std::nullopt;
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

    [[nodiscard]] ArchiveProblem _problem(
        ArchiveProblem::Kind kind, Path path = {}, std::string reason = {}) const;
    [[nodiscard]] ArchiveProblem _problemOfWriting(const std::error_code& reason) const;
    [[nodiscard]] std::optional<ArchiveProblem> _obstacle() const;
    [[nodiscard]] std::optional<ArchiveProblem> _obstacleOf(const Path& item) const;
    void _make();
    void _makeIn(const Path& folder);
    [[nodiscard]] std::vector<Path> _distinctItems(std::optional<ScratchFolder>& links);
    [[nodiscard]] bool _makeLink(const Path& link, const Path& toItem);
    [[nodiscard]] ArchiverDelegate _delegate();
    void _noteStatus(int status);
    void _noteLeftOut(const Path& item, std::error_code reason);
    void _heedStop();
    void _judge(const std::optional<Path>& made);
    [[nodiscard]] ArchiveProblem _whyNothingIsMade() const;
    void _deliver(const Path& made);

    Archiver& _engine;
    const Request _request;
    const Events _events;
    Result _result;
    ToolMessages _messages;
    ArchivePlace _place;
    std::optional<ReadProgress> _reading; // when somebody listens
    std::optional<int> _engineStatus; // of its completion
    std::error_code _engineFailure; // in moving what was made
    bool _hasNoRoomToStage = false;
    std::optional<std::string> _failedTool; // its last words: what it made is not worth keeping

    std::atomic<Stop> _stop = Stop::none; // the one state that tells how far the job is to go
    std::stop_source _abandoning; // once it was asked to stop, that there is no time, either
};
