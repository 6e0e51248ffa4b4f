#include "app/window/JobNotice.h"

#include "app/window/ProgressText.h"
#include "app/window/ResultText.h"
#include "platform/desktop/services/PathText.h"
#include "platform/desktop/services/Workspace.h"

namespace
{

constexpr auto clickAction = QLatin1String("default"); // as the desktop calls it
constexpr auto showAction = QLatin1String("show");
constexpr auto openAction = QLatin1String("open");
constexpr auto cancelAction = QLatin1String("cancel");

constexpr qsizetype mostLines = 3; // of a notification; the window's sheet has them all

QString placeOf(const std::filesystem::path& archive)
{
    return PathText::abbreviatedWithTilde(PathText::textOf(archive));
}

} // namespace

JobNotice::JobNotice(QObject* parent)
    : QObject(parent)
{
    connect(&_notification, &Notification::invoked, this, &JobNotice::_obey);
    connect(&_notification, &Notification::gone, this, &JobNotice::gone);
}

void JobNotice::showProgress(const Path& archive, const JobProgress& progress)
{
    constexpr int whole = 100;
    const int percent = static_cast<int>(progress.fraction.value_or(0) * whole);
    QStringList lines(
        tr("%1: %2%").arg(PathText::textOf(archive.filename()), QString::number(percent)));
    lines << ProgressText::sizesOf(progress) << ProgressText::timeLeftOf(progress);
    lines.removeAll(QString());
    _notification.show({.kind = Notification::Kind::progress,
        .title = tr("Making an archive"),
        .text = lines.join(QLatin1Char('\n')),
        .actions = {{cancelAction, tr("Cancel")}},
        .percent = percent});
}

void JobNotice::showResult(const ArchiveJob::Result& result, Leads leads)
{
    Notification::Content content;
    if (result.problem) {
        content.kind = Notification::Kind::failed;
        content.title = tr("The archive could not be made");
        content.text = ResultText::sentencesOf(*result.problem, {});
    } else {
        content.title
            = result.isWhole ? tr("The archive is made") : tr("Not everything is in the archive");
        content.text = placeOf(*result.archive);
        _archive = *result.archive;
    }
    if (result.leftOut.count() > 0)
        content.text += QLatin1Char('\n')
            + ResultText::listed(
                ResultText::linesOf(result.leftOut), mostLines, result.leftOut.count());
    const bool hasArchive = leads.toArchive && !result.problem;
    _leadsToWindow = leads.toWindow;
    if (leads.toWindow || hasArchive)
        content.actions.emplace_back(clickAction, leads.toWindow ? tr("Open Parcelo") : tr("Show"));
    if (hasArchive) {
        content.actions.emplace_back(showAction, tr("Show"));
        content.actions.emplace_back(openAction, tr("Open"));
    }
    _notification.show(content);
}

void JobNotice::_obey(const QString& action, const QByteArray& activationToken)
{
    if (action == cancelAction)
        Q_EMIT cancelled();
    else if (action == clickAction && _leadsToWindow)
        Q_EMIT windowWanted(activationToken);
    else if (action == openAction)
        Workspace::sharedWorkspace().openFile(_archive);
    else
        Workspace::sharedWorkspace().selectFile(_archive);
}
