// A menu of folders, shown by their titles: what it is given, the home folder, the desktop, and a
// command for any other. Keys open it and never change the choice behind the user's back. Paths are
// kept as bytes beside the texts, so that any folder can be chosen. Main thread only.
#pragma once

#include <QComboBox>

#include <filesystem>
#include <vector>

class FolderMenu : public QComboBox
{
    Q_OBJECT

public:
    struct Folder {
        QString title;
        std::filesystem::path path;
    };

    explicit FolderMenu(QWidget* parent = nullptr);

    // Makes the menu anew and keeps what is selected.
    void setFolders(const std::vector<Folder>& folders);

    // The first row with this folder, or a new one on top.
    void selectFolder(const std::filesystem::path& folder);

    [[nodiscard]] const std::filesystem::path& folder() const { return _folder; }

Q_SIGNALS:
    void folderChanged(); // by the user or by selectFolder()
    void otherWanted(); // the command

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void _insert(int index, const Folder& folder, const QIcon& icon);
    [[nodiscard]] int _rowOf(const std::filesystem::path& folder) const;
    void _choose(int row);

    std::filesystem::path _folder; // selected
};
