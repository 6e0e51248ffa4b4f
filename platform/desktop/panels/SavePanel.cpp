#include "platform/desktop/panels/SavePanel.h"

#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/services/PathText.h"

#include <QApplication>
#include <QDir>
#include <QGridLayout>
#include <QLineEdit>
#include <QMessageBox>

#include <utility>

SavePanel::SavePanel(QWidget* parent)
    : QFileDialog(parent)
{
    setOption(QFileDialog::DontUseNativeDialog);
    setAcceptMode(QFileDialog::AcceptSave);
    setFileMode(QFileDialog::AnyFile);
    setWindowTitle(tr("Save Archive"));
    setLabelText(QFileDialog::LookIn, tr("Save in:"));
    // There is one type of file: nothing to choose.
    for (const char* name : {"fileTypeLabel", "fileTypeCombo"})
        if (auto* typeChoice = findChild<QWidget*>(QLatin1String(name)))
            typeChoice->hide();
    connect(this, &QDialog::finished, this, [this](int result) {
        if (const auto handler = std::exchange(_completionHandler, {}))
            handler(result == QDialog::Accepted ? answerOK : answerCancel, _path);
    });
}

void SavePanel::setPrompt(const QString& title)
{
    setLabelText(QFileDialog::Accept, title);
}

void SavePanel::setAllowedFileType(const QString& extension)
{
    _allowedFileType = extension;
    setNameFilter(tr("Archives (*.%1)").arg(extension));
}

void SavePanel::setAccessoryView(QWidget* view)
{
    auto* grid = qobject_cast<QGridLayout*>(layout());
    grid->addWidget(view, grid->rowCount(), 0, 1, grid->columnCount());
    view->show();
}

QLineEdit* SavePanel::_nameField() const
{
    return findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
}

void SavePanel::setNameFieldStringValue(const QString& name)
{
    _nameField()->setText(name);
    _nameField()->selectAll();
    _nameField()->setFocus();
}

void SavePanel::setDirectoryURL(const std::filesystem::path& folder)
{
    std::filesystem::path nearest = folder;
    while (nearest.has_relative_path() && !QDir(PathText::textOf(nearest)).exists())
        nearest = nearest.parent_path();
    setDirectory(PathText::textOf(nearest));
}

void SavePanel::beginSheetModalForWindow(QWidget* window, CompletionHandler completionHandler)
{
    _completionHandler = std::move(completionHandler);
    Sheets::begin(this, window);
}

// Only what is written as a path to a folder is a place to go to: the archive of a folder is
// usually made beside it, under its name. Everything else is a name as it stands. Qt would take
// quotes in it for a list of files, and gives its suffix only to names without any dot.
void SavePanel::accept()
{
    QString name = _nameField()->text();
    if (name.startsWith(QLatin1String("~/")))
        name.replace(0, 1, QDir::homePath());
    const bool isPath = name.contains(QLatin1Char('/')) || name == QLatin1String("..");
    if (name.isEmpty() || (isPath && QFileInfo(directory(), name).isDir())) {
        QFileDialog::accept();
        return;
    }
    const QString suffix = QLatin1Char('.') + _allowedFileType;
    if (name.endsWith(suffix, Qt::CaseInsensitive))
        name.chop(suffix.size());
    const QString base = QFileInfo(name).fileName();
    const QFileInfo file(directory(), name + suffix);
    if (base.isEmpty() || base == QLatin1String(".") || base == QLatin1String("..")) {
        QApplication::beep();
        return;
    }
    if (!QFileInfo(file.absolutePath()).isDir() || file.isDir()) {
        QMessageBox::warning(this, windowTitle(),
            tr("An archive cannot be made at %1.").arg(file.absoluteFilePath()));
        return;
    }
    if ((file.exists() || file.isSymLink())
        && QMessageBox::question(this, windowTitle(),
               tr("%1 already exists.\nDo you want to replace it?").arg(file.fileName()))
            != QMessageBox::Yes)
        return;
    _path = PathText::pathOf(file.absoluteFilePath());
    done(QDialog::Accepted);
}
