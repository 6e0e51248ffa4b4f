// The panel that asks for the name and the folder of a new file. It is Qt's own file dialog, the
// only one that has room for an accessory view. A name without the allowed file type gets it;
// replacing a file is asked about. Kept and shown again; main thread only.
#pragma once

#include <QFileDialog>

#include <filesystem>
#include <functional>

class SavePanel : public QFileDialog
{
    Q_OBJECT

public:
    enum Answer : int { answerCancel = 0, answerOK = 1 };
    using CompletionHandler = std::function<void(int answer, const std::filesystem::path& path)>;

    explicit SavePanel(QWidget* parent = nullptr);

    void setPrompt(const QString& title); // of the confirm button
    void setAllowedFileType(const QString& extension); // without a dot
    void setAccessoryView(QWidget* view); // becomes the panel's child
    void setNameFieldStringValue(const QString& name);

    // The folder to begin with, or the nearest above it that is there and that Qt can name.
    void setDirectoryURL(const std::filesystem::path& folder);

    // Shows the panel as a sheet and returns at once; the handler is called once, when the panel
    // is closed.
    void beginSheetModalForWindow(QWidget* window, CompletionHandler completionHandler);

    void accept() override;

private:
    [[nodiscard]] class QLineEdit* _nameField() const;

    QString _allowedFileType;
    std::filesystem::path _path; // chosen
    CompletionHandler _completionHandler;
};
