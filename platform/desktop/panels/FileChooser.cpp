#include "platform/desktop/panels/FileChooser.h"

#include "platform/desktop/panels/FileListView.h"
#include "platform/desktop/panels/FolderMenu.h"
#include "platform/desktop/panels/OpenPanel.h"
#include "platform/desktop/panels/PlainLabel.h"
#include "platform/desktop/services/PathText.h"
#include "platform/desktop/services/UriList.h"
#include "system/PathString.h"

#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>

namespace fs = std::filesystem;

namespace
{

constexpr int widthInCharacters = 84;
constexpr int heightInLines = 26;

bool isThere(const fs::path& path)
{
    std::error_code failure;
    return fs::exists(fs::symlink_status(path, failure));
}

// From the folder up to the root.
std::vector<FolderMenu::Folder> foldersAbove(fs::path folder)
{
    std::vector<FolderMenu::Folder> folders;
    for (;; folder = folder.parent_path()) {
        folders.push_back({PathText::abbreviatedWithTilde(PathText::textOf(folder)), folder});
        if (folder == folder.parent_path())
            return folders;
    }
}

} // namespace

FileChooser::FileChooser(const Path& startingIn, QWidget* parent)
    : QDialog(parent)
    , _folderMenu(new FolderMenu(this))
    , _listView(new FileListView(this))
    , _pathField(new QLineEdit(this))
    , _hiddenBox(new QCheckBox(tr("Show &hidden files"), this))
    , _messageLabel(PlainLabel::make({}, QStringLiteral("messageLabel"), this))
    , _cancelButton(new QPushButton(tr("&Cancel"), this))
    , _chooseButton(new QPushButton(tr("Ch&oose"), this))
{
    setWindowTitle(tr("Choose Files and Folders"));
    _listView->setAccessibleName(tr("Files and folders"));
    _pathField->setObjectName(QStringLiteral("fileNameEdit"));
    for (QPushButton* button : {_cancelButton, _chooseButton})
        button->setAutoDefault(false); // the framed button is the one that Return presses
    _chooseButton->setDefault(true);
    _layOut();
    _connect();
    _showFolder(startingIn);
    _listView->setFocus();
}

void FileChooser::_layOut()
{
    auto* grid = new QGridLayout(this);
    const auto addLabel = [&](const QString& text, QWidget* buddy, int row) {
        auto* label = new QLabel(text, this);
        label->setBuddy(buddy);
        grid->addWidget(label, row, 0);
    };
    addLabel(tr("&Folder:"), _folderMenu, 0);
    grid->addWidget(_folderMenu, 0, 1);
    grid->addWidget(_listView, 1, 0, 1, 2);
    addLabel(tr("&Path:"), _pathField, 2);
    grid->addWidget(_pathField, 2, 1);
    grid->addWidget(_messageLabel, 3, 0, 1, 2);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(_hiddenBox);
    buttons->addStretch(1);
    buttons->addWidget(_cancelButton);
    buttons->addWidget(_chooseButton);
    grid->addLayout(buttons, 4, 0, 1, 2);
}

void FileChooser::_connect()
{
    connect(_folderMenu, &FolderMenu::folderChanged, this,
        [this] { _showFolder(_folderMenu->folder()); });
    connect(_folderMenu, &FolderMenu::otherWanted, this, [this] {
        OpenPanel::beginForFolder(this, _folder, [this](const auto& paths) {
            if (!paths.empty())
                _showFolder(paths.front());
        });
    });
    connect(_listView, &QTreeWidget::itemSelectionChanged, this, [this] {
        if (!_listView->selectedItems().isEmpty())
            _pathField->clear();
        _tell();
    });
    connect(_listView, &QTreeWidget::itemDoubleClicked, this, [this] {
        const Path folder = _listView->currentFolder();
        folder.empty() ? accept() : _showFolder(folder);
    });
    connect(_pathField, &QLineEdit::textChanged, this, &FileChooser::_takeTyped);
    connect(_hiddenBox, &QCheckBox::toggled, this, [this](bool isOn) {
        _listView->setShowsHiddenFiles(isOn);
        _showFolder(_folder);
    });
    connect(_cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(_chooseButton, &QPushButton::clicked, this, &QDialog::accept);

    const auto addShortcut = [this](QKeyCombination keys, auto&& action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    addShortcut(Qt::ALT | Qt::Key_Up, [this] { _showFolder(_folder.parent_path(), _folder); });
    addShortcut(Qt::ALT | Qt::Key_Down, [this] {
        if (const Path folder = _listView->currentFolder(); !folder.empty())
            _showFolder(folder);
    });
    addShortcut(Qt::CTRL | Qt::Key_H, [this] { _hiddenBox->toggle(); });
}

void FileChooser::_showFolder(const Path& folder, const Path& child)
{
    _base = folder;
    _pathField->clear();
    _list(folder, child);
}

void FileChooser::_list(const Path& folder, const Path& child)
{
    _folder = folder;
    _folderMenu->blockSignals(true); // we are what it would tell
    _folderMenu->setFolders(foldersAbove(folder));
    _folderMenu->selectFolder(folder);
    _folderMenu->blockSignals(false);
    _isReadable = _listView->showFolder(folder, child);
    _tell();
}

// A slash at the end of a folder's path looks into it.
void FileChooser::_takeTyped()
{
    const Path path = _typedPath();
    if (!path.empty())
        _listView->clearSelection();
    std::error_code failure;
    if (_pathField->text().endsWith(QLatin1Char('/')) && path != _folder
        && fs::is_directory(path, failure))
        _list(path);
    if (path.empty())
        _base = _folder;
    _tell();
}

// Nothing as long as nothing is typed; without a slash at its end.
FileChooser::Path FileChooser::_typedPath() const
{
    const std::string typed = _pathField->text().trimmed().toStdString();
    if (typed.empty())
        return {};
    if (typed.starts_with("file:"))
        if (const auto paths = UriList::filePaths(typed, {}).paths; !paths.empty())
            return paths.front();
    const Path path = (_base / PathString::stringByExpandingTildeInPath(typed)).lexically_normal();
    return path.has_filename() ? path : path.parent_path();
}

std::vector<FileChooser::Path> FileChooser::paths() const
{
    const Path typed = _typedPath();
    if (typed.empty())
        return _listView->selectedPaths();
    return isThere(typed) ? std::vector{typed} : std::vector<Path>();
}

void FileChooser::_tell()
{
    const auto count = static_cast<int>(paths().size());
    _chooseButton->setEnabled(count > 0);
    QString message;
    if (!_typedPath().empty() && count == 0)
        message = tr("There is nothing at this path.");
    else if (count > 1)
        message = tr("%1 items selected").arg(count);
    else if (!_isReadable)
        message = tr("This folder cannot be read.");
    _messageLabel->setText(message);
    _pathField->setAccessibleDescription(message);
}

QSize FileChooser::sizeHint() const
{
    return {widthInCharacters * fontMetrics().averageCharWidth(),
        heightInLines * fontMetrics().lineSpacing()};
}

void FileChooser::accept()
{
    if (paths().empty())
        QApplication::beep();
    else
        QDialog::accept();
}
