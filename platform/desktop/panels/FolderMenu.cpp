#include "platform/desktop/panels/FolderMenu.h"

#include "platform/desktop/panels/ComboBoxText.h"
#include "platform/desktop/services/PathText.h"

#include <QAbstractItemView>
#include <QDir>
#include <QKeyEvent>
#include <QStandardPaths>
#include <QStyleOptionComboBox>
#include <QWheelEvent>

namespace
{

// As wide as a usual path; longer ones lose their middle.
constexpr int widthInCharacters = 40;

std::filesystem::path pathIn(const QVariant& row)
{
    return row.toByteArray().toStdString();
}

} // namespace

FolderMenu::FolderMenu(QWidget* parent)
    : QComboBox(parent)
{
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(widthInCharacters);
    view()->setTextElideMode(Qt::ElideMiddle);
    view()->setAccessibleName(tr("Folders"));
    connect(this, &QComboBox::activated, this, &FolderMenu::_choose);
}

void FolderMenu::setFolders(const std::vector<Folder>& folders)
{
    clear();
    for (const Folder& folder : folders)
        _insert(count(), folder, style()->standardIcon(QStyle::SP_DirIcon));
    if (count() > 0)
        insertSeparator(count());
    const QString home = QDir::homePath();
    const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    _insert(count(), {tr("Home"), PathText::pathOf(home)},
        style()->standardIcon(QStyle::SP_DirHomeIcon));
    if (desktop != home && QDir(desktop).exists())
        _insert(count(), {tr("Desktop"), PathText::pathOf(desktop)},
            style()->standardIcon(QStyle::SP_DesktopIcon));
    insertSeparator(count());
    addItem(style()->standardIcon(QStyle::SP_DirOpenIcon), tr("Other…"));
    setCurrentIndex(_rowOf(_folder));
}

void FolderMenu::_insert(int index, const Folder& folder, const QIcon& icon)
{
    insertItem(index, icon, folder.title, QByteArray::fromStdString(folder.path.native()));
    setItemData(index, PathText::textOf(folder.path), Qt::ToolTipRole);
}

void FolderMenu::selectFolder(const std::filesystem::path& folder)
{
    if (_rowOf(folder) < 0)
        _insert(0, {PathText::abbreviatedWithTilde(PathText::textOf(folder)), folder},
            style()->standardIcon(QStyle::SP_DirIcon));
    _folder = folder;
    setCurrentIndex(_rowOf(folder));
    setToolTip(PathText::textOf(folder));
    Q_EMIT folderChanged();
}

int FolderMenu::_rowOf(const std::filesystem::path& folder) const
{
    return findData(QByteArray::fromStdString(folder.native()));
}

void FolderMenu::_choose(int row)
{
    if (const QVariant chosen = itemData(row); chosen.isValid()) {
        _folder = pathIn(chosen);
        setToolTip(PathText::textOf(_folder));
        Q_EMIT folderChanged();
        return;
    }
    setCurrentIndex(_rowOf(_folder));
    Q_EMIT otherWanted();
}

void FolderMenu::paintEvent(QPaintEvent* /*event*/)
{
    QStyleOptionComboBox option;
    initStyleOption(&option);
    ComboBoxText::paint(this, option);
}

// A step would select one row after another, and call the command on the way.
void FolderMenu::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Space:
    case Qt::Key_F4:
        showPopup();
        break;
    default:
        event->ignore();
    }
}

void FolderMenu::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}
