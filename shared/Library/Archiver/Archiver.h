// Turns dropped items into one archive in a destination folder. It compresses nothing itself: it
// stages the items in its working folder and runs command-line tools, whose output it turns into
// progress for its delegate. A job runs on the thread that calls archiveFiles(); one job at a time.
// What a tool reports changes nothing in the course of a job: the delegate is told, and judges.
// LaunchFailure leaves a job when a tool cannot be started.
#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <sys/types.h>

class Task;

enum ArchiveType : int {
    ArchiveTypeTarGz = 0, // FOLDER/NAME.tar.gz
    ArchiveTypePlainZip = 1, // FOLDER/NAME.zip
    ArchiveTypeDiskImage = 2, // FOLDER/NAME.dmg
    ArchiveTypeMacZip = 3, // FOLDER/NAME.zip with resource forks and extended metadata
};

// Follows a job, on the thread that runs it. An empty function is a callback not implemented; only
// setNumberOfFiles is called without asking, so every delegate must have it.
struct ArchiverDelegate {
    // The file-system entries that the job will process; once, before any tool runs.
    std::function<void(int count)> setNumberOfFiles = {};
    // The name found in a chunk of tool output. Where this is implemented, progressBy is not sent.
    std::function<void(const std::string& name)> archiverDidAddFile = {};
    // The line feeds, at least one, in a chunk of tool output.
    std::function<void(int lines)> progressBy = {};
    // A tool has ended: its exit status, or 128 + the number of the signal that killed it.
    std::function<void(int status)> taskCompletedWithStatusCode = {};
    // The job has ended: 0, or 1 for a plain zip that was cancelled.
    std::function<void(int status)> archiverCompletedWithStatus = {};
    // A chunk of tool output as it came, before it is counted, for whoever wants to show a tool's
    // own words. Independent of the others.
    std::function<void(std::string_view bytes)> toolOutput = {};
    // A tool is at work: its process. As it starts and ten times a second, over all tools of a job.
    std::function<void(pid_t tool)> toolIsRunning = {};
    // Something, or part of it, will be missing from the archive, since it could not be staged.
    std::function<void(const std::filesystem::path& item, std::error_code reason)> notStaged = {};
    // A plain zip could not be moved to its place, or what stands there not be removed. Whoever
    // gives true tells the user; otherwise an alert does.
    std::function<bool(std::error_code reason)> notMoved = {};
};

class Archiver
{
public:
    using Path = std::filesystem::path;

    struct ArchiveFiles {
        std::vector<Path> files;
        std::optional<std::string> name; // of the archive, without extension
        int type = ArchiveTypePlainZip; // any other number than an ArchiveType makes nothing
        bool excludeDSStore = true;
        int compressionLevel = 6; // plain zip only; negative: the tool's default
        std::optional<Path> toFolder;
        std::optional<std::string> withPassword = std::nullopt; // disk image only
    };

    struct ArchiveFile {
        Path file; // staged: the folder that becomes the archive's top
        int type = ArchiveTypeTarGz;
        bool excludeDSStore = true;
        int compressionLevel = 6;
        Path toFolder;
        std::optional<std::string> withPassword = std::nullopt;
    };

    // Must not be used: reports that, and makes nothing.
    static std::unique_ptr<Archiver> init();
    static std::unique_ptr<Archiver> initWithWorkingDirectory(const std::optional<Path>& path);

    Archiver(const Archiver&) = delete;
    Archiver& operator=(const Archiver&) = delete;
    ~Archiver();

    [[nodiscard]] const Path& workingDirectory() const { return _workingDirectory; }
    void setWorkingDirectory(Path path) { _workingDirectory = std::move(path); }

    // Without a delegate tools run in collecting mode: see runCommand().
    [[nodiscard]] const std::optional<ArchiverDelegate>& delegate() const { return _delegate; }
    void setDelegate(std::optional<ArchiverDelegate> delegate) { _delegate = std::move(delegate); }

    // What alerts name as the archive of the jobs to come, where that is made in one place to be
    // moved to another; without it, the path that it is made at.
    void setArchiveInAlerts(std::optional<Path> path) { _archiveInAlerts = std::move(path); }

    // The archive's path, also when a tool failed or the job was cancelled; nothing when there is
    // no name, no folder, no such type or no tool for it.
    std::optional<Path> archiveFiles(const ArchiveFiles& job);

    // The archive of one staged item; not for plain zips, which are not staged.
    std::optional<Path> archiveFile(const ArchiveFile& job);

    // Makes a folder of links to the items (for ArchiveTypeMacZip hard links, or else copies) and
    // gives its path. Failures are passed over: what cannot be staged is not archived.
    Path makeTmpFolderForArchive(
        const std::string& name, int type, const std::vector<Path>& dstPaths);

    // Moves a folder aside, to its name with the first free number.
    static void removeTmpFolder(const Path& path);

    // Any thread, while a job runs: interrupts the running tool. A plain zip also stops before its
    // next item; the other types go on with the tools that are left.
    void cancel();

    // For a program that ends. As cancel(), but for good: what the job has made goes, and nothing
    // is delivered. An older archive stays, except for types that remove it before their tool runs.
    // To be called again until the job has ended: a tool that does not heed the first call is
    // killed by one that comes a while later. A volume is still unmounted, within some seconds.
    void abandon();

    // Where the tools are. zipPath() is decided once per process. tarPath() is nothing when the
    // program has no tar among its resources. A tool at a fixed path is that path where the system
    // has it, else the resource of that name, else nothing.
    static const Path& zipPath();
    static std::optional<Path> tarPath();
    static std::optional<Path> pathForTool(const Path& fixedPath);

    // The first tool that a type of archive takes and that is nowhere; tools at fixed paths only.
    static std::optional<Path> missingTool(int type);

    // The producers. Each replaces an archive of the same name.
    bool addToZip(
        const Path& archive, const Path& sourcePath, bool excludeDSStore, int compressionLevel);
    int createPlainZipAtPath(const Path& archive, const std::vector<Path>& sourcePaths,
        bool excludeDSStore, int compressionLevel);
    std::optional<Path> createForkZip(const Path& staged, const Path& toFolder);
    std::optional<Path> createTar(const Path& staged, bool excludeDSStore, const Path& toFolder);
    std::optional<Path> createDMG(
        const Path& staged, const std::optional<std::string>& withPassword, const Path& toFolder);

    // The steps of a disk image. The size as du has it, 0 when it is not known.
    int duSizeForPath(const Path& path);
    // Mounts the image of that name, given without extension; the device of the mounted disk,
    // nothing when the tool told none.
    std::optional<std::string> mountSparseImage(const std::string& name, const Path& folderPath);
    // Copies all entries below the staged folder to a volume; of links, what they lead to.
    void dittoContentsAtPath(const Path& staged, const Path& to);

    // Runs a tool to its end, in an environment that holds nothing but TMPDIR. With a delegate, its
    // output becomes callbacks, the result is nothing and the status is not written (streaming
    // mode); without one, the result is the output (collecting mode). Which mode it is does not
    // depend on what the caller needs.
    std::optional<std::string> runCommand(const std::optional<Path>& command,
        const std::vector<std::string>& withArguments,
        const std::optional<Path>& currentDirectoryPath, int* terminationStatus);

    // One chunk of output in streaming mode.
    void taskDataAvailable(std::string_view chunk) const;

private:
    explicit Archiver(Path workingDirectory);

    static void _reportFailure(
        const std::string& inMethod, const Archiver* object, int lineNumber, const char* text);
    void _stageCopy(const Path& item, const Path& entry) const;
    void _tellNotStaged(const Path& item, std::error_code reason) const;
    void _setSparedFor(std::chrono::seconds time);
    static std::optional<std::string> _filenameFromData(std::string_view data);
    void _replaceArchive(const Path& archive, const Path& byArchive) const;
    void _tellNotMoved(
        const std::string& message, const Path& archive, std::error_code reason) const;
    Task& _makeTask(const Path& launchPath, const std::vector<std::string>& arguments,
        const std::optional<Path>& currentDirectory);

    std::mutex _taskMutex; // protects these two, which the job's thread sets while others cancel
    std::unique_ptr<Task> _task; // set while a tool runs, and after one that could not be started
    std::chrono::steady_clock::time_point _sparedUntil; // what is abandoned goes on until then
    std::chrono::steady_clock::time_point _nextLook; // at the tool that is running
    std::optional<ArchiverDelegate> _delegate;
    Path _workingDirectory;
    std::optional<Path> _archiveInAlerts;
    std::atomic<bool> _cancelFlag = false;
    std::stop_source _abandoning; // ends what the engine does itself, such as copying
};
