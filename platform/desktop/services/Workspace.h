// The desktop around the program: opens addresses and shows files in the file manager. Nothing it
// does waits for another program. The shared one lives on the main thread for the whole process.
#pragma once

#include <QObject>
#include <QUrl>

#include <filesystem>
#include <functional>
#include <optional>

class Workspace : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    static Workspace& sharedWorkspace();

    // Puts another in its place, which is borrowed; null: the desktop's again. For tests, which
    // must not open anything and see what would be opened.
    static void setSharedWorkspace(Workspace* standIn);

    // Main thread. False for an address that is empty, invalid or without a scheme, and when there
    // is no program that opens addresses.
    virtual bool openURL(const QUrl& url);

    // Opens a page of our own in the browser, and tells later and once whether there is one that
    // does. Nothing is told once the context is gone. Main thread.
    virtual void openPage(
        const std::filesystem::path& page, QObject* context, std::function<void(bool works)> then);

    // Shows the file selected in its folder, or that folder at least. From any thread. The file
    // managers of this desktop have no root folder of a view: that argument changes nothing.
    virtual void selectFile(const std::filesystem::path& path,
        const std::optional<std::filesystem::path>& inFileViewerRootedAtPath = std::nullopt);

    // Opens the file with its own program; where there is none, selects it. Main thread.
    virtual void openFile(const std::filesystem::path& path);

    // While it is not known yet whether a file could be shown or opened. Main thread.
    [[nodiscard]] bool isRevealing() const { return !children().isEmpty(); }

Q_SIGNALS:
    // The file is not there, or no file manager answers.
    void couldNotReveal(const std::filesystem::path& path);
};
