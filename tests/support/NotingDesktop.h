// The desktop as the program asks for it: notes everything, does nothing, and stands in for the
// real one as long as it lives. For programs with Qt.
#pragma once

#include "platform/desktop/services/MailComposer.h"
#include "platform/desktop/services/Workspace.h"

namespace support
{

class NotingWorkspace : public Workspace
{
public:
    NotingWorkspace() { setSharedWorkspace(this); }
    ~NotingWorkspace() override { setSharedWorkspace(nullptr); }

    bool openURL(const QUrl& url) override
    {
        opened.push_back(url.toString().toStdString());
        return true;
    }
    void openPage(const std::filesystem::path& page, QObject* /*context*/,
        std::function<void(bool works)> then) override
    {
        opened.push_back(page);
        then(hasBrowser);
    }
    void selectFile(const std::filesystem::path& path,
        const std::optional<std::filesystem::path>& /*inFileViewerRootedAtPath*/) override
    {
        revealed.push_back(path);
    }
    void openFile(const std::filesystem::path& path) override { opened.push_back(path.native()); }

    bool hasBrowser = true;
    std::vector<std::string> opened;
    std::vector<std::filesystem::path> revealed;
};

class NotingComposer : public MailComposer
{
public:
    NotingComposer() { setSharedComposer(this); }
    ~NotingComposer() override { setSharedComposer(nullptr); }

    bool composeMessage(const std::filesystem::path& attachment) override
    {
        mailed.push_back(attachment);
        return true;
    }

    std::vector<std::filesystem::path> mailed;
};

} // namespace support
