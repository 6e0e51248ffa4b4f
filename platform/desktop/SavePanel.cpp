#include "platform/desktop/SavePanel.h"

#include "platform/desktop/PathText.h"
#include "platform/desktop/Sheets.h"

#include <QDir>
#include <QGridLayout>
#include <QLineEdit>

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
            handler(result == QDialog::Accepted ? answerOK : answerCancel, _chosenPath());
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
    const QString text = PathText::textOf(folder);
    if (QDir(text).exists())
        setDirectory(text);
}

void SavePanel::beginSheetModalForWindow(QWidget* window, CompletionHandler completionHandler)
{
    _completionHandler = std::move(completionHandler);
    Sheets::begin(this, window);
}

// Qt gives its default suffix only to names without any dot, and takes the name of a folder for a
// wish to go there: the archive of a folder is usually made beside it, under its name. Only what is
// written as a path is a place to go to.
void SavePanel::accept()
{
    const QString name = _nameField()->text();
    const QString suffix = QLatin1Char('.') + _allowedFileType;
    const bool isPath = name.contains(QLatin1Char('/')) || name == QLatin1String("..");
    const bool isPlace = name.isEmpty() || (isPath && QFileInfo(directory(), name).isDir());
    if (!isPlace && !name.endsWith(suffix, Qt::CaseInsensitive))
        _nameField()->setText(name + suffix);
    QFileDialog::accept();
}

std::filesystem::path SavePanel::_chosenPath() const
{
    const QStringList files = selectedFiles();
    return files.isEmpty() ? std::filesystem::path() : PathText::pathOf(files.first());
}
