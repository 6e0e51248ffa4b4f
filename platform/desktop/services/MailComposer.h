// Opens a new message with an attachment in the user's mail program. Linux has no one way for it:
// the default program's own command, where it is known, is the sure one; the desktop portal and
// xdg-email open a message somehow, maybe without the file. Nothing waits for another program. The
// shared one lives on the main thread for the whole process.
#pragma once

#include <QObject>

#include <filesystem>

class MailComposer : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    static MailComposer& sharedComposer();

    // Puts another in its place, which is borrowed; null: the desktop's again. For tests.
    static void setSharedComposer(MailComposer* standIn);

    // From any thread. False when there is no such file. One signal follows later in any case. The
    // file has to stay: the program may read it only when the message is sent.
    virtual bool composeMessage(const std::filesystem::path& attachment);

Q_SIGNALS:
    // A message was opened; not `certain`: by means that cannot tell whether the file is in it.
    void attached(const std::filesystem::path& attachment, bool certain);

    // The user said no to the desktop's question.
    void cancelled(const std::filesystem::path& attachment);

    // Nothing worked, or mail is written in a browser, where no other program can attach a file.
    void couldNotAttach(const std::filesystem::path& attachment);
};
