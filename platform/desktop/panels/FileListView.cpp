#include "platform/desktop/panels/FileListView.h"

#include "platform/desktop/services/PathText.h"
#include "platform/desktop/services/SizeText.h"
#include "system/FileStatus.h"

#include <QCollator>
#include <QDateTime>
#include <QFileIconProvider>
#include <QHeaderView>
#include <QLocale>

#include <tuple>
#include <utility>

namespace
{

enum Column { nameColumn, sizeColumn, timeColumn, numberOfColumns };

// What an item shows is put into words when it is seen.
class Entry : public QTreeWidgetItem
{
public:
    Entry(std::filesystem::path path, const FileListView::Icons& icons)
        : _path(std::move(path))
        , _name(PathText::textOf(_path.filename()))
    {
        if (::stat(_path.c_str(), &_status) != 0)
            ::lstat(_path.c_str(), &_status); // a link to nowhere
        if (isFolder())
            setChildIndicatorPolicy(ShowIndicator);
        setIcon(nameColumn, isFolder() ? icons.folder : icons.file);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return _path; }
    [[nodiscard]] bool isFolder() const { return S_ISDIR(_status.st_mode); }
    [[nodiscard]] bool takesListing() { return isFolder() && !std::exchange(_isListed, true); }

    [[nodiscard]] QVariant data(int column, int role) const override
    {
        if (role == Qt::TextAlignmentRole && column == sizeColumn)
            return int{Qt::AlignRight | Qt::AlignVCenter};
        if (role != Qt::DisplayRole)
            return QTreeWidgetItem::data(column, role);
        switch (column) {
        case nameColumn:
            return _name;
        case sizeColumn:
            return isFolder() ? QString() : SizeText::of(static_cast<double>(_status.st_size));
        default:
            return QLocale().toString(
                QDateTime::fromSecsSinceEpoch(_status.st_mtim.tv_sec), QLocale::ShortFormat);
        }
    }

    // Folders first, then by the column that was clicked, then by name.
    bool operator<(const QTreeWidgetItem& other) const override
    {
        const auto& right = static_cast<const Entry&>(other);
        if (isFolder() != right.isFolder())
            return isFolder();
        const int column = treeWidget() == nullptr ? nameColumn : treeWidget()->sortColumn();
        if (column == sizeColumn && _status.st_size != right._status.st_size)
            return _status.st_size < right._status.st_size;
        if (column == timeColumn && !isSameTime(_status.st_mtim, right._status.st_mtim))
            return std::tie(_status.st_mtim.tv_sec, _status.st_mtim.tv_nsec)
                < std::tie(right._status.st_mtim.tv_sec, right._status.st_mtim.tv_nsec);
        static const QCollator collator = [] {
            QCollator made;
            made.setNumericMode(true);
            return made;
        }();
        return collator.compare(_name, right._name) < 0;
    }

private:
    const std::filesystem::path _path;
    const QString _name;
    FileStatus _status{};
    bool _isListed = false;
};

const Entry* entryOf(const QTreeWidgetItem* item)
{
    return static_cast<const Entry*>(item);
}

bool hasSelectedParent(const QTreeWidgetItem* item)
{
    for (item = item->parent(); item != nullptr; item = item->parent())
        if (item->isSelected())
            return true;
    return false;
}

} // namespace

FileListView::FileListView(QWidget* parent)
    : QTreeWidget(parent)
    , _icons{QFileIconProvider().icon(QFileIconProvider::Folder),
          QFileIconProvider().icon(QFileIconProvider::File)}
{
    setColumnCount(numberOfColumns);
    setHeaderLabels({tr("Name"), tr("Size"), tr("Modified")});
    header()->setStretchLastSection(false);
    header()->setResizeContentsPrecision(0); // by what is seen: a folder may hold many files
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    header()->setSectionResizeMode(nameColumn, QHeaderView::Stretch);
    setTextElideMode(Qt::ElideMiddle);
    setSelectionMode(ExtendedSelection);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setExpandsOnDoubleClick(false);
    setSortingEnabled(true);
    sortByColumn(nameColumn, Qt::AscendingOrder);
    connect(this, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) {
        auto* folder = static_cast<Entry*>(item);
        std::error_code failure;
        if (folder->takesListing())
            _list(folder->path(), folder, failure);
        if (folder->childCount() == 0)
            folder->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicator);
    });
}

bool FileListView::showFolder(const Path& folder, const Path& child)
{
    clear();
    std::error_code failure;
    _list(folder, invisibleRootItem(), failure);
    scrollToTop();
    for (int row = 0; row < topLevelItemCount() && !child.empty(); ++row)
        if (entryOf(topLevelItem(row))->path() == child)
            setCurrentItem(topLevelItem(row));
    return !failure;
}

void FileListView::_list(const Path& folder, QTreeWidgetItem* parent, std::error_code& failure)
{
    QList<QTreeWidgetItem*> entries;
    for (std::filesystem::directory_iterator at(folder, failure), end; !failure && at != end;
         at.increment(failure))
        if (_showsHiddenFiles || !at->path().filename().native().starts_with('.'))
            entries.append(new Entry(at->path(), _icons));
    parent->addChildren(entries);
    parent->sortChildren(sortColumn(), header()->sortIndicatorOrder());
}

std::vector<FileListView::Path> FileListView::selectedPaths() const
{
    std::vector<Path> paths;
    for (QTreeWidgetItemIterator at(
             const_cast<FileListView*>(this), QTreeWidgetItemIterator::Selected);
         *at != nullptr; ++at)
        if (!hasSelectedParent(*at))
            paths.push_back(entryOf(*at)->path());
    return paths;
}

FileListView::Path FileListView::currentFolder() const
{
    const Entry* entry = entryOf(currentItem());
    return entry != nullptr && entry->isFolder() ? entry->path() : Path();
}
