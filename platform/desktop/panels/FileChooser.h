// The sheet in which files and folders are chosen, any number and in any mixture, from a list or by
// a path that is typed: also a "file:" address, by which a name that is no text can be given.
// Return always chooses; Right and a double click look into a folder. Main thread only.
#pragma once

#include <QDialog>

#include <filesystem>
#include <vector>

class FileListView;
class FolderMenu;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

class FileChooser : public QDialog
{
    Q_OBJECT

public:
    using Path = std::filesystem::path;

    FileChooser(const Path& startingIn, QWidget* parent);

    // What is typed, else what is selected.
    [[nodiscard]] std::vector<Path> paths() const;

    [[nodiscard]] const Path& folder() const { return _folder; } // whose list is shown

    [[nodiscard]] QSize sizeHint() const override;

    void accept() override;

private:
    void _layOut();
    void _connect();
    void _showFolder(const Path& folder, const Path& child = {});
    void _list(const Path& folder, const Path& child = {});
    void _takeTyped();
    void _tell();
    [[nodiscard]] Path _typedPath() const;

    FolderMenu* _folderMenu;
    FileListView* _listView;
    QLineEdit* _pathField;
    QCheckBox* _hiddenBox;
    QLabel* _messageLabel;
    QPushButton* _cancelButton;
    QPushButton* _chooseButton;
    Path _folder;
    Path _base; // of a path that is typed: the folder that was shown before
    bool _isReadable = true; // the folder
};
