// A list of what is in a folder, its subfolders to be opened in place (Right and Left, as in any
// tree). Names are bytes, so that every file can be chosen; sizes and times are read with the
// folder. Nothing follows later changes. Main thread only.
#pragma once

#include <QIcon>
#include <QTreeWidget>

#include <filesystem>
#include <vector>

class FileListView : public QTreeWidget
{
    Q_OBJECT

public:
    using Path = std::filesystem::path;
    struct Icons {
        QIcon folder;
        QIcon file;
    };

    explicit FileListView(QWidget* parent = nullptr);

    // What is in the folder; false when it cannot be read. The child, if it is there, gets
    // selected.
    bool showFolder(const Path& folder, const Path& child = {});
    void setShowsHiddenFiles(bool flag) { _showsHiddenFiles = flag; } // of the folders shown next

    // In the order of the list, without what lies in a folder that is selected itself.
    [[nodiscard]] std::vector<Path> selectedPaths() const;

    // The current item, when it is a folder; else nothing.
    [[nodiscard]] Path currentFolder() const;

private:
    void _list(const Path& folder, QTreeWidgetItem* parent, std::error_code& failure);

    const Icons _icons;
    bool _showsHiddenFiles = false;
};
