#include "platform/desktop/panels/OpenPanel.h"

#include "platform/desktop/panels/FileChooser.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/services/PathText.h"
#include "platform/desktop/services/PortalRequest.h"
#include "platform/desktop/services/UriList.h"

#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>

#include <utility>

namespace
{

QString folderTitle()
{
    return QCoreApplication::translate("OpenPanel", "Choose a Folder");
}

// Begins in the nearest folder that is there and that Qt can name.
void beginForFolderWithQt(QWidget* window, std::filesystem::path startingIn,
    OpenPanel::CompletionHandler completionHandler)
{
    while (startingIn.has_relative_path() && !QDir(PathText::textOf(startingIn)).exists())
        startingIn = startingIn.parent_path();
    auto* panel = new QFileDialog(window, folderTitle(), PathText::textOf(startingIn));
    panel->setObjectName(QStringLiteral("chooseFolderPanel"));
    panel->setFileMode(QFileDialog::Directory);
    panel->setOption(QFileDialog::ShowDirsOnly);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(panel, &QDialog::finished, panel,
        [panel, handler = std::move(completionHandler)](int result) {
            std::vector<std::filesystem::path> paths;
            if (result == QDialog::Accepted)
                for (const QString& folder : panel->selectedFiles())
                    paths.push_back(PathText::pathOf(folder));
            handler(paths);
        });
    Sheets::begin(panel, window);
}

// As portals name the window that theirs belongs to.
QString portalName(const QWidget* window)
{
    return QGuiApplication::platformName() == QLatin1String("xcb")
        ? QStringLiteral("x11:%1").arg(window->winId(), 0, 16)
        : QString();
}

// Portals older than the option for folders have let the user choose a file in one.
std::vector<std::filesystem::path> chosenFolder(const QVariantMap& results)
{
    const QStringList uris = results.value(QStringLiteral("uris")).toStringList();
    auto paths = UriList::filePaths(uris.value(0).toStdString(), {}).paths;
    std::error_code missing;
    for (auto& path : paths)
        if (!std::filesystem::is_directory(path, missing))
            path = path.parent_path();
    return paths;
}

} // namespace

void OpenPanel::beginForFiles(
    QWidget* window, const std::filesystem::path& startingIn, FilesHandler completionHandler)
{
    auto* chooser = new FileChooser(startingIn, window);
    chooser->setObjectName(QStringLiteral("chooseFilesPanel"));
    chooser->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(chooser, &QDialog::finished, chooser,
        [chooser, handler = std::move(completionHandler)](int result) {
            handler(result == QDialog::Accepted ? chooser->paths()
                                                : std::vector<std::filesystem::path>(),
                chooser->folder());
        });
    Sheets::begin(chooser, window);
}

void OpenPanel::beginForFolder(QWidget* window, const std::filesystem::path& startingIn,
    const CompletionHandler& completionHandler)
{
    if (window->findChild<PortalRequest*>(QString(), Qt::FindDirectChildrenOnly) != nullptr)
        return completionHandler({});
    const std::string& path = startingIn.native();
    const QVariantMap options{{QStringLiteral("directory"), true}, {QStringLiteral("modal"), true},
        {QStringLiteral("current_folder"), QByteArray(path.c_str(), path.size() + 1)}};
    auto* request = PortalRequest::call(QStringLiteral("FileChooser"), QStringLiteral("OpenFile"),
        {portalName(window), folderTitle()}, options, window,
        [=](PortalRequest::Outcome outcome, const QVariantMap& results) {
            if (outcome == PortalRequest::Outcome::failed)
                beginForFolderWithQt(window, startingIn, completionHandler);
            else
                completionHandler(outcome == PortalRequest::Outcome::done
                        ? chosenFolder(results)
                        : std::vector<std::filesystem::path>());
        });
    if (auto* sheet = qobject_cast<QDialog*>(window))
        QObject::connect(sheet, &QDialog::finished, request, &PortalRequest::close);
}
