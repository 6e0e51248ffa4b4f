#include "platform/desktop/services/MailComposer.h"

#include "platform/desktop/services/DefaultApplication.h"
#include "platform/desktop/services/PortalRequest.h"
#include "platform/desktop/services/ProgramLauncher.h"
#include "platform/desktop/services/SharedService.h"
#include "platform/desktop/services/UriList.h"

#include <QDBusMetaType>
#include <QDBusUnixFileDescriptor>
#include <QList>
#include <QTimer>

#include <algorithm>

#include <fcntl.h>

namespace fs = std::filesystem;

namespace
{

// How a mail program is told what to attach. Quotes and commas, which separate in the first form,
// are escaped in a URI; in a mailto address the URI is the value of a field, and escaped once more.
enum class Form {
    composeFields, // attachment='URI'
    mailtoField, // mailto:?attach=URI
    uri,
    path,
    joinedUri, // right behind the last argument
};
struct MailProgram {
    QLatin1String idPart; // of the desktop id, in lower case
    const char* program;
    std::initializer_list<const char*> arguments;
    Form form;
};
const MailProgram mailPrograms[] = {
    {QLatin1String("thunderbird"), "thunderbird", {"-compose"}, Form::composeFields},
    {QLatin1String("icedove"), "icedove", {"-compose"}, Form::composeFields},
    {QLatin1String("betterbird"), "betterbird", {"-compose"}, Form::composeFields},
    {QLatin1String("seamonkey"), "seamonkey", {"-compose"}, Form::composeFields},
    {QLatin1String("evolution"), "evolution", {}, Form::mailtoField},
    {QLatin1String("geary"), "geary", {}, Form::mailtoField},
    {QLatin1String("kmail"), "kmail", {"--composer", "--attach"}, Form::uri},
    {QLatin1String("claws-mail"), "claws-mail", {"--compose", "--attach"}, Form::path},
    {QLatin1String("sylpheed"), "sylpheed", {"--compose", "--attach"}, Form::path},
    {QLatin1String("balsa"), "balsa", {"-m", "mailto:", "--attach="}, Form::joinedUri},
};

// Parts of desktop ids: web mail.
constexpr QLatin1String browsers[] = {
    QLatin1String("browser"), // of several names
    QLatin1String("firefox"),
    QLatin1String("chrom"), // Chrome and Chromium
    QLatin1String("microsoft-edge"),
    QLatin1String("epiphany"),
    QLatin1String("falkon"),
    QLatin1String("konqueror"),
    QLatin1String("librewolf"),
    QLatin1String("midori"),
    QLatin1String("opera"),
    QLatin1String("vivaldi"),
    QLatin1String("waterfox"),
};

DetachedProcess::Setup commandFor(const MailProgram& mail, const fs::path& attachment)
{
    const std::string uri = UriList::fileUri(attachment);
    DetachedProcess::Setup setup{.program = mail.program};
    setup.arguments.assign(mail.arguments.begin(), mail.arguments.end());
    switch (mail.form) {
    case Form::composeFields:
        setup.arguments.push_back("attachment='" + uri + "'");
        break;
    case Form::mailtoField:
        setup.arguments.push_back("mailto:?attach=" + UriList::percentEncoded(uri, ":/"));
        break;
    case Form::uri:
        setup.arguments.push_back(uri);
        break;
    case Form::path:
        setup.arguments.push_back(attachment.native());
        break;
    case Form::joinedUri:
        setup.arguments.back() += uri;
        break;
    }
    return setup;
}

// xdg-email takes a name to pieces by the rules of its locale.
std::vector<std::string> environmentInUtf8()
{
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const QString value = qEnvironmentVariable(variable);
        if (value.contains(QLatin1String("utf"), Qt::CaseInsensitive))
            return {};
        if (!value.isEmpty())
            break; // the ones behind it do not count
    }
    return {"LC_ALL=C.UTF-8"};
}

// Composes one message by the first means that works, and goes then.
class MailRequest : public QObject
{
public:
    MailRequest(fs::path attachment, MailComposer* composer)
        : QObject(composer)
        , _composer(composer)
        , _attachment(std::move(attachment))
    {
    }

    void start(bool isFile)
    {
        if (!isFile) {
            QTimer::singleShot(0, this, &MailRequest::_giveUp); // not before the call returns
            return;
        }
        DefaultApplication::query(QStringLiteral("x-scheme-handler/mailto"), this,
            [this](const QString& id) { _runMailProgram(id); });
    }

private:
    void _runMailProgram(const QString& id)
    {
        const auto isNamed
            = [&](QLatin1String part) { return id.contains(part, Qt::CaseInsensitive); };
        if (std::any_of(std::begin(browsers), std::end(browsers), isNamed))
            return _giveUp();
        const auto* known = std::find_if(std::begin(mailPrograms), std::end(mailPrograms),
            [&](const MailProgram& each) { return isNamed(each.idPart); });
        // KDE's kmailservice is not KMail: it passes addresses on to whatever is set there.
        if (known == std::end(mailPrograms) || isNamed(QLatin1String("kmailservice")))
            return _askPortal();
        ProgramLauncher::launch(commandFor(*known, _attachment), this,
            [this](bool works) { works ? _succeed(true) : _askPortal(); });
    }

    void _askPortal()
    {
        qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
        const FileDescriptor opened(::open(_attachment.c_str(), O_PATH | O_CLOEXEC));
        const QList<QDBusUnixFileDescriptor> files{
            QDBusUnixFileDescriptor(opened.number())}; // of its own
        const QVariantMap options{
            {QStringLiteral("addresses"), QStringList()}, // without it some portals do nothing
            {QStringLiteral("attachment_fds"), QVariant::fromValue(files)}};
        PortalRequest::call(QStringLiteral("Email"), QStringLiteral("ComposeEmail"), {QString()},
            options, this, [this](PortalRequest::Outcome outcome, const auto& /*results*/) {
                _takeOutcome(outcome);
            });
    }

    void _takeOutcome(PortalRequest::Outcome outcome)
    {
        switch (outcome) {
        case PortalRequest::Outcome::done:
            return _succeed(false);
        case PortalRequest::Outcome::cancelled:
            deleteLater();
            Q_EMIT _composer->cancelled(_attachment);
            return;
        case PortalRequest::Outcome::failed:
            return _runXdgEmail();
        }
    }

    void _runXdgEmail()
    {
        const DetachedProcess::Setup setup{.program = "xdg-email",
            .arguments = {"--utf8", "--attach", _attachment.native()},
            .changedEnvironment = environmentInUtf8()};
        ProgramLauncher::launch(
            setup, this, [this](bool works) { works ? _succeed(false) : _giveUp(); });
    }

    void _succeed(bool certain)
    {
        deleteLater();
        Q_EMIT _composer->attached(_attachment, certain);
    }

    void _giveUp()
    {
        deleteLater();
        Q_EMIT _composer->couldNotAttach(_attachment);
    }

    MailComposer* const _composer;
    const fs::path _attachment;
};

} // namespace

MailComposer& MailComposer::sharedComposer()
{
    return SharedService<MailComposer>::get();
}

void MailComposer::setSharedComposer(MailComposer* standIn)
{
    SharedService<MailComposer>::set(standIn);
}

bool MailComposer::composeMessage(const fs::path& attachment)
{
    std::error_code missing;
    const fs::path file = attachment.empty() ? attachment : fs::absolute(attachment, missing);
    const bool isFile = fs::is_regular_file(file, missing);
    QMetaObject::invokeMethod(
        this, [this, file, isFile] { (new MailRequest(file, this))->start(isFile); });
    return isFile;
}
