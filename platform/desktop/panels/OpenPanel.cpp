#include "platform/desktop/panels/OpenPanel.h"

#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/services/PathText.h"

#include <QCoreApplication>
#include <QFileDialog>

#include <utility>

namespace
{

void begin(QFileDialog* panel, QWidget* window, OpenPanel::CompletionHandler completionHandler)
{
    panel->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(panel, &QDialog::finished, panel,
        [panel, handler = std::move(completionHandler)](int result) {
            std::vector<std::filesystem::path> paths;
            if (result == QDialog::Accepted)
                for (const QString& file : panel->selectedFiles())
                    paths.push_back(PathText::pathOf(file));
            handler(paths);
        });
    Sheets::begin(panel, window);
}

} // namespace

void OpenPanel::beginForFiles(QWidget* window, CompletionHandler completionHandler)
{
    auto* panel = new QFileDialog(
        window, QCoreApplication::translate("OpenPanel", "Choose Files to Archive"));
    panel->setObjectName(QStringLiteral("chooseFilesPanel"));
    panel->setFileMode(QFileDialog::ExistingFiles);
    begin(panel, window, std::move(completionHandler));
}

void OpenPanel::beginForFolder(
    QWidget* window, const std::filesystem::path& startingIn, CompletionHandler completionHandler)
{
    auto* panel = new QFileDialog(window,
        QCoreApplication::translate("OpenPanel", "Choose a Folder"), PathText::textOf(startingIn));
    panel->setObjectName(QStringLiteral("chooseFolderPanel"));
    panel->setFileMode(QFileDialog::Directory);
    panel->setOption(QFileDialog::ShowDirsOnly);
    begin(panel, window, std::move(completionHandler));
}
