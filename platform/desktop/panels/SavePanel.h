// The sheet that asks for the name and the folder of a new file: a name, its extension behind it, a
// menu of folders, an accessory view. It tells at once what stands at the name, what keeps a file
// from being made there and what is odd about the name; confirming it replaces what it tells of.
// Kept and shown again; main thread only.
#pragma once

#include "platform/desktop/panels/FolderMenu.h"
#include "platform/desktop/panels/SaveCheck.h"

#include <QDialog>

#include <filesystem>
#include <functional>
#include <vector>

class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;

class SavePanel : public QDialog
{
    Q_OBJECT

public:
    enum Answer : int { answerCancel = 0, answerOK = 1 };
    using CompletionHandler = std::function<void(int answer, const std::filesystem::path& path)>;

    explicit SavePanel(QWidget* parent = nullptr);

    void setPrompt(const QString& title); // of the confirm button
    void setAllowedFileType(const QString& extension); // without a dot; of the path that is chosen
    void setAccessoryView(QWidget* view); // becomes the panel's child
    void setNameFieldStringValue(const QString& name); // without its extension

    // What the file ends in once it is made, with its dot, should that not be the allowed type.
    void setFinalExtension(const QString& extension);

    // The folders to choose from, and the one to begin with, be it there or not.
    void setFolders(const std::vector<FolderMenu::Folder>& folders);
    void setDirectoryURL(const std::filesystem::path& folder);

    // Shows the panel as a sheet and returns at once; the handler is called once, when the panel
    // is closed.
    void beginSheetModalForWindow(QWidget* window, CompletionHandler completionHandler);

    void accept() override;

protected:
    void changeEvent(QEvent* event) override;

private:
    void _layOut();
    void _connect();
    void _align();
    [[nodiscard]] QString _stem() const;
    void _look();
    void _show(const QStringList& messages);
    [[nodiscard]] QStringList _messages() const;
    [[nodiscard]] QString _shortened(const QString& name, int width) const;
    void _chooseFolder();

    QGridLayout* _grid;
    QLabel* _nameLabel;
    QLabel* _folderLabel;
    QLineEdit* _nameField;
    QLabel* _extensionLabel;
    FolderMenu* _folderMenu;
    QLabel* _messageIcon;
    QLabel* _messageLabel;
    QPushButton* _nextFreeButton;
    QPushButton* _cancelButton;
    QPushButton* _confirmButton;
    QWidget* _accessoryView = nullptr;

    QString _allowedFileType;
    QString _extension; // with its dot
    SaveCheck::Finding _finding; // as it is shown
    std::filesystem::path _path; // chosen
    CompletionHandler _completionHandler;
};
