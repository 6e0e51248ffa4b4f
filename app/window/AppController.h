// The program's centre: owns what lives as long as the program, and answers to the main window, its
// menus, the drop box and the desktop. One object, on the main thread, except where a comment says
// otherwise. Its source is split by theme, as this header is grouped.
#pragma once

#include "app/job/ArchiveJob.h"
#include "app/window/Destinations.h"
#include "platform/desktop/panels/FolderMenu.h"
#include "platform/desktop/panels/PopUpButton.h"
#include "shared/Library/Archiver/Archiver.h"
#include "system/FileDescriptor.h"

#include <QDateTime>
#include <QObject>
#include <QStringList>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>

class AboutController;
class AdvertTextView;
class DropView;
class JobAttention;
class PreferenceController;
class ProgressSheet;
class QDialog;
class QKWindow;
class QLabel;
class QMenuBar;
class QProgressBar;
class SavePanel;
class SUUpdater;

class AppController : public QObject, public MenuItemValidation
{
    Q_OBJECT
    Q_PROPERTY(QString appName READ appName CONSTANT)
    Q_PROPERTY(QString bundleIdentifier READ bundleIdentifier CONSTANT)
    Q_PROPERTY(int runCount READ runCount CONSTANT)
    Q_PROPERTY(QString tmpdir READ _tmpdirText CONSTANT)
    Q_PROPERTY(QString appSupportPath READ _appSupportPathText CONSTANT)
    Q_PROPERTY(QString filename READ filename WRITE setFilename NOTIFY filenameChanged)
    Q_PROPERTY(bool filenameIsValid READ filenameIsValid NOTIFY filenameChanged)
    Q_PROPERTY(QString destinationDirectory READ _destinationDirectoryText)
    Q_PROPERTY(QString previewText READ previewText NOTIFY previewTextChanged)
    Q_PROPERTY(int selectedDestination READ selectedDestination WRITE setSelectedDestination NOTIFY
            selectedDestinationChanged)
    Q_PROPERTY(bool acceptsFiles READ acceptsFiles NOTIFY acceptsFilesChanged)
    Q_PROPERTY(int archiveType READ archiveType WRITE setArchiveType NOTIFY archiveTypeChanged)

public:
    using Path = std::filesystem::path;

    // What the interface files hold and the controller works with; all borrowed.
    struct Interface {
        QMenuBar* mainMenu = nullptr;
        QKWindow* mainWindow = nullptr;
        PopUpButton* destinationPop = nullptr;
        AdvertTextView* advertTextView = nullptr;
        QDialog* emailWindow = nullptr; // asks for the name of an archive to be mailed
        QWidget* accessoryView = nullptr; // of the save panel
        ProgressSheet* progressWindow = nullptr;
        QProgressBar* progress = nullptr;
        QLabel* statusTF = nullptr;
        DropView* saveDropView = nullptr;
    };
    // --- Settings, start-up and shut-down (AppController.cpp) ---

    AppController();
    ~AppController() override;

    // In this order, once: the interface has been loaded; documents given at launch arrive after
    // it; launching has ended.
    void awakeFromNib(const Interface& interface);
    void applicationDidFinishLaunching();

    // Never lets the window close: hides the program or ends it.
    bool windowShouldClose(QObject* sender);

    // Ends the program, unless the user wants it to stay: a message may still need its archive.
    void terminate(QObject* sender);
    // Nobody is asked. A job that is under way ends first, and its archive is not delivered.
    void terminateNow();
    void applicationShouldTerminate();

    [[nodiscard]] QKWindow* mainWindow() const { return _interface.mainWindow; }
    [[nodiscard]] QWidget* accessoryView() const { return _interface.accessoryView; }
    [[nodiscard]] DropView* saveDropView() const { return _interface.saveDropView; }

    [[nodiscard]] static QString appName();
    [[nodiscard]] static QString bundleIdentifier();

    // The number of this start, counted from 1: the first call advances the stored count.
    int runCount();
    void incrementRunCount(); // a hook
    void incrementUsageCount();
    void migrateCheckAtStartup();

    // Where archives for e-mail are made: private to the process, removed when the program ends.
    const Path& tmpFolder();

    // The engine's working folder, which outlives the process; nothing when it cannot be made.
    const Path& tmpdirString();
    std::optional<Path> tmpdir();
    bool cleanupTmpdir();

    // Where the program may keep files of its own.
    std::optional<Path> appSupportPath();

    // Resets the window's title: now, or in five seconds when no sender is given.
    Q_INVOKABLE void clearWindowTitle(QObject* sender);

    // --- The destination menu (AppControllerDestinations.cpp) ---

    void setupDestinations();
    [[nodiscard]] int selectedDestination() const;
    void setSelectedDestination(int tag);

    // The folder that a request begins with, expanded.
    std::optional<Path> destinationDirectory();

    // What the save panel offers: the source's and the remembered ones.
    std::vector<FolderMenu::Folder> foldersToSaveIn();

    Q_INVOKABLE void addDestination(QObject* sender);
    void addDestinationPath(const QString& path);
    Q_INVOKABLE void removeDestination(QObject* sender);
    Q_INVOKABLE void dummy(QObject* /*sender*/) { } // of the blank items
    [[nodiscard]] bool validateMenuItem(const PopUpMenuItem& item) const override;

    // --- Files besides a drop (AppControllerFiles.cpp) ---

    // Opened through the program's icon, named on the command line or handed over by another
    // start. While a request is under way they wait, and are then proposed, each as its own.
    struct Documents {
        std::vector<Path> files = {};
        bool forEmail = false; // whatever the destination menu says
    };
    void openDocuments(Documents documents);

    // One of them. All that arrive within 0.05 s become one archive.
    bool applicationOpenFile(const Path& path);

    // Files that are dropped during a request wait like documents. What came with them is told.
    void droppedMeanwhile(const std::vector<Path>& files, const QStringList& leftOut);

    // What waits, in words; empty when nothing does.
    [[nodiscard]] QString waitingText() const;

    // How to begin without a drag, until the first archive is made.
    [[nodiscard]] static QString hint();

    // Tells that documents to be opened are not there, or no files of this computer.
    void couldNotOpen(const QStringList& names);

    // Files without a drag: chosen in a panel, or pasted.
    void chooseFiles(QObject* sender);
    void chooseFilesForEmail(); // whatever the destination menu says
    void paste(QObject* sender);

    // --- A request, from the name to the archive (AppControllerRequests.cpp) ---

    void startProcessing(QObject* sender);
    void runSavePanelSheet(const std::optional<QString>& proposedName);
    SavePanel& savePanel();

    // Waits for the answer: the tag of the button pressed, 1 or more to go on.
    int runEmailSheet(const std::optional<QString>& proposedName);
    void dismissSheet(QObject* sender);

    // Starts the worker thread, which shows the progress sheet, makes the archive of the box's
    // files and delivers it. It gets all it needs now, and asks for nothing later.
    void archiveToPath(const Path& path);

    void cancel(QObject* sender);

    // What the job tells of the engine, on the worker thread.
    void setNumberOfFiles(int count);
    void progressBy(int lines);
    void progressed(const JobProgress& progress);
    void archiverCompletedWithStatus(int status);

    // Made on first use.
    Archiver& archiver();

    [[nodiscard]] QString filename() const { return _filename; }
    void setFilename(const QString& filename);
    [[nodiscard]] bool filenameIsValid() const { return !_filename.isEmpty(); }
    [[nodiscard]] QString previewText() const;
    [[nodiscard]] int archiveType() const;
    void setArchiveType(int type);

    // Whether the box is open: not from the confirmation of a request until it is delivered.
    [[nodiscard]] bool acceptsFiles() const;

    // --- Delivery (AppControllerDelivery.cpp) ---

    void composeEmailWithAttachment(const Path& path);

    // --- Updates, prompts and links (AppControllerPrompts.cpp) ---

    SUUpdater& updater();
    void checkForUpdates(QObject* sender);
    void checkForUpdatesInBackground();
    void checkForUpdatesInBackgroundLastAttempt();

    // Each asks at most until it is told not to. The first makes a special offer for a time.
    void sellSendora();
    void sellSendora(const QDateTime& now);
    void runShareOnFacebookSheet();
    void runRateOnAppStoreSheet();

    void showHelp(QObject* sender);
    void visitWebsite(QObject* sender); // the sender's tag chooses the page
    void visitShop(QObject* sender);
    void showAbout(QObject* sender);
    void showPreference(QObject* sender);
    void preferenceDidChange();
    void debug(QObject* /*sender*/) { }

    // Changes with time.
    [[nodiscard]] static std::int32_t randomProductId();
    [[nodiscard]] static std::int32_t randomProductId(double secondsSinceReferenceDate);

Q_SIGNALS:
    void terminating(); // nothing more is begun
    void terminated(); // the program may end now
    void windowWanted(const QByteArray& activationToken); // by a click on a notification
    void filenameChanged();
    void previewTextChanged();
    void selectedDestinationChanged();
    void archiveTypeChanged();
    void acceptsFilesChanged();
    void waitingChanged();

private:
    struct Prompt;
    struct Message {
        QString title;
        QString text;
        QString toCopy = {}; // by a button of its own
    };

    // Properties are texts; empty ones where there is no folder.
    QString _tmpdirText();
    QString _appSupportPathText();
    QString _destinationDirectoryText();

    // QKUtility::afterDelay() for a block that uses this object: it does not run without it.
    void _afterDelay(double seconds, std::function<void()> runBlock);

    void _terminateWhenIdle();
    bool _mayStopJob();
    [[nodiscard]] QStringList _waitingNames() const;
    bool _mayForgetWaiting();
    void _forgetWaiting();
    bool _mayLeaveMessages();
    bool _keepMailedArchives(const Path& inFolder);
    void _followSettings();
    void _openNext();
    void _endRequest();
    void _tellWhatIsLeftOut();
    void _setAcceptsFiles(bool flag);
    void _attend(const ArchiveJob::Result& result);
    ArchiveJob::Events _events();
    void _work();
    void _performOnMainThread(
        std::function<void()> block, std::chrono::nanoseconds after = std::chrono::nanoseconds(0));
    void _countLines();
    void _deliver(const Path& archive);
    void _tellToAttach(const Path& archive);
    void _fail(const ArchiveProblem& problem);
    void _tellWhatIsMissing(const LeftOut& leftOut);
    void _choose(std::function<void(const std::vector<Path>& paths)> then);
    void _chose(const std::vector<Path>& paths);
    void _runPrompt(const Prompt& prompt);
    [[nodiscard]] static QString _listed(const QStringList& lines, std::size_t count = 0);
    void _tell(const Message& message);
    void _tellNext();
    void _hearDesktop();
    void _quitWhenNothingIsTold();
    void _quitLater();

    Interface _interface;
    std::unique_ptr<PreferenceController> _preferenceController;
    std::int32_t _dockDropCount = 0; // documents opened through the icon
    bool _shouldAutoQuit = false; // quit when the archive is done; settled at launch
    bool _hasMailed = false; // an archive of this process: quitting would take it away
    bool _isTerminating = false;
    std::deque<Documents> _waiting; // for the end of the request under way
    bool _isUnderWay = false; // a request, from its question for a name
    bool _isAskedAboutWaiting = false; // whether they may be forgotten
    bool _opensForEmail = false; // the documents opened last
    bool _mailsArchive = false; // the request under way, whatever the menu says by now
    QString _filename; // of the archive being asked for
    Path _folderToChooseIn; // files

    // Made on first use, kept for the process.
    std::optional<Path> _tmpFolder;
    FileDescriptor _tmpFolderHold; // the lock of the former, once it is made
    std::optional<Path> _tmpdirString;
    FileDescriptor _tmpdirHold; // the working folder's lock, once it is made
    std::optional<Path> _appSupportPath;
    std::unique_ptr<Archiver> _archiver;
    std::unique_ptr<SUUpdater> _updater;
    std::unique_ptr<AboutController> _aboutController;
    std::unique_ptr<JobAttention> _attention; // from the waking up on
    SavePanel* _savePanel = nullptr; // the main window's child
    std::int32_t _runCount = -1; // not read yet

    std::atomic<int> _uncountedLines = 0; // of the tools, for the progress bar
    std::deque<Message> _untold; // for a time without a sheet

    Path _notMade; // the archive of the last request, when that ended without
    std::shared_ptr<ArchiveJob> _job; // from its start until its archive is delivered
    std::future<void> _worker; // last: it uses all of the above
};
