#include "platform/desktop/services/Workspace.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/desktop/services/BusCall.h"
#include "platform/desktop/services/DefaultApplication.h"
#include "platform/desktop/services/PortalRequest.h"
#include "platform/desktop/services/ProgramLauncher.h"
#include "platform/desktop/services/SharedService.h"
#include "platform/desktop/services/UriList.h"

#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDesktopServices>
#include <QTimer>

#include <algorithm>
#include <chrono>

#include <fcntl.h>

namespace fs = std::filesystem;

namespace
{

constexpr std::chrono::seconds showItemsTimeout{5}; // a file manager may have to start first

// File managers that are not known to the bus but select a file, or show its folder, by command.
enum class Shown { uri, file, folder };
struct FileManager {
    QLatin1String idPart; // of the desktop id, in lower case
    const char* program;
    const char* option; // before what is shown; null: none
    Shown shown;
};
constexpr FileManager fileManagers[] = {
    {QLatin1String("nautilus"), "nautilus", "--select", Shown::uri},
    {QLatin1String("dolphin"), "dolphin", "--select", Shown::uri},
    {QLatin1String("nemo"), "nemo", nullptr, Shown::file},
    {QLatin1String("thunar"), "thunar", nullptr, Shown::folder}, // it would open the file itself
};

// Shows one file by the first means that works, from the one that selects it to the one that just
// opens its folder, and goes then.
class RevealRequest : public QObject
{
public:
    RevealRequest(fs::path file, Workspace* workspace)
        : QObject(workspace)
        , _workspace(workspace)
        , _file(std::move(file))
        , _uri(UriList::fileUri(_file))
    {
    }

    void start()
    {
        std::error_code unreadable;
        if (fs::exists(fs::symlink_status(_file, unreadable)))
            _askFileManager();
        else
            QTimer::singleShot(0, this, &RevealRequest::_giveUp); // not before the call returns
    }

private:
    void _askFileManager()
    {
        const QString name = QStringLiteral("org.freedesktop.FileManager1");
        QDBusMessage message = QDBusMessage::createMethodCall(name,
            QStringLiteral("/org/freedesktop/FileManager1"), name, QStringLiteral("ShowItems"));
        message << QStringList{QString::fromLatin1(_uri.c_str())} << QString();
        BusCall::send(message, showItemsTimeout, this, [this](const QDBusPendingCall& answer) {
            answer.isError() ? _askPortal() : deleteLater();
        });
    }

    void _askPortal()
    {
        const FileDescriptor opened(::open(_file.c_str(), O_PATH | O_CLOEXEC));
        const QDBusUnixFileDescriptor file(opened.number()); // of its own
        const QVariantList arguments{QString(), QVariant::fromValue(file)};
        PortalRequest::call(QStringLiteral("OpenURI"), QStringLiteral("OpenDirectory"), arguments,
            {}, this, [this](PortalRequest::Outcome outcome, const auto& /*results*/) {
                outcome == PortalRequest::Outcome::failed ? _findFileManager() : deleteLater();
            });
    }

    void _findFileManager()
    {
        DefaultApplication::query(QStringLiteral("inode/directory"), this,
            [this](const QString& id) { _runFileManager(id); });
    }

    void _runFileManager(const QString& id)
    {
        const auto* known = std::find_if(std::begin(fileManagers), std::end(fileManagers),
            [&](const FileManager& each) { return id.contains(each.idPart, Qt::CaseInsensitive); });
        if (known == std::end(fileManagers))
            return _openFolder(id);
        DetachedProcess::Setup setup{.program = known->program};
        if (known->option)
            setup.arguments.emplace_back(known->option);
        setup.arguments.push_back(known->shown == Shown::uri ? _uri
                : known->shown == Shown::file                ? _file.native()
                                                             : _file.parent_path().native());
        ProgramLauncher::launch(
            setup, this, [this, id](bool works) { works ? deleteLater() : _openFolder(id); });
    }

    void _openFolder(const QString& id)
    {
        // We open folders ourselves, to make archives of them: that would only lead back here.
        if (id.startsWith(QLatin1String(Bundle::bundleIdentifier), Qt::CaseInsensitive))
            return _giveUp();
        const DetachedProcess::Setup setup{
            .program = "xdg-open", .arguments = {_file.parent_path().native()}};
        ProgramLauncher::launch(
            setup, this, [this](bool works) { works ? deleteLater() : _giveUp(); });
    }

    void _giveUp()
    {
        deleteLater();
        Q_EMIT _workspace->couldNotReveal(_file);
    }

    Workspace* const _workspace;
    const fs::path _file;
    const std::string _uri;
};

} // namespace

Workspace& Workspace::sharedWorkspace()
{
    return SharedService<Workspace>::get();
}

void Workspace::setSharedWorkspace(Workspace* standIn)
{
    SharedService<Workspace>::set(standIn);
}

bool Workspace::openURL(const QUrl& url)
{
    if (!url.isValid() || url.scheme().isEmpty())
        return false;
    if (QDesktopServices::openUrl(url))
        return true;
    try { // on a platform of Qt's that knows no desktop
        const DetachedProcess opener(
            {.program = "xdg-open", .arguments = {url.toEncoded().toStdString()}});
        return true;
    } catch (const LaunchFailure&) {
        return false;
    }
}

// Where there is no browser, xdg-open could find an editor for the page, or say that all is well.
void Workspace::openPage(
    const fs::path& page, QObject* context, std::function<void(bool works)> then)
{
    DefaultApplication::query(QStringLiteral("x-scheme-handler/http"), context,
        [page, context, then = std::move(then)](const QString& browser) {
            if (browser.isEmpty())
                return then(false);
            ProgramLauncher::launch(
                {.program = "xdg-open", .arguments = {UriList::fileUri(page)}}, context, then);
        });
}

void Workspace::selectFile(
    const fs::path& path, const std::optional<fs::path>& /*inFileViewerRootedAtPath*/)
{
    std::error_code missing; // then it cannot be shown, and that is told
    const fs::path file = path.empty() ? path : fs::absolute(path, missing);
    QMetaObject::invokeMethod(this, [this, file] { (new RevealRequest(file, this))->start(); });
}

// As it is: an address made by Qt cannot hold a name that is not UTF-8.
void Workspace::openFile(const fs::path& path)
{
    ProgramLauncher::launch(
        {.program = "xdg-open", .arguments = {path.native()}}, this, [this, path](bool works) {
            if (!works)
                selectFile(path);
        });
}
