#include "app/window/ResultText.h"

#include <QCoreApplication>

#include <algorithm>

namespace
{

// Reasons come in the words of the system and of our tools.
std::string translated(const char* text)
{
    return QCoreApplication::translate("ArchiveProblem", text).toStdString();
}

// Without its middle, when it could make a sheet wider than the screen.
QString shortened(const QString& line)
{
    constexpr qsizetype longest = 120;
    if (line.size() <= longest)
        return line;
    return line.left(longest / 2) + QStringLiteral("…") + line.right(longest / 2);
}

} // namespace

QString ResultText::sentencesOf(const ArchiveProblem& problem, const QString& otherwise)
{
    QString consequence = QString::fromStdString(problem.consequence(translated));
    if (consequence.isEmpty())
        consequence = otherwise;
    QString cause = QString::fromStdString(problem.cause(translated));
    cause.replace(0, 1, cause.left(1).toUpper());
    return consequence.isEmpty()
        ? QCoreApplication::translate("AppController", "%1.").arg(cause)
        : QCoreApplication::translate("AppController", "%1. %2.").arg(consequence, cause);
}

QStringList ResultText::linesOf(const LeftOut& leftOut)
{
    QStringList lines;
    for (const LeftOut::Item& item : leftOut.items) {
        const QString name = QString::fromStdString(item.name);
        lines.append(item.reason.empty()
                ? name
                : QCoreApplication::translate("AppController", "%1: %2")
                      .arg(name, QString::fromStdString(translated(item.reason.c_str()))));
    }
    return lines;
}

QString ResultText::listed(const QStringList& lines, qsizetype most, std::size_t count)
{
    QStringList shown;
    for (const QString& line : lines.mid(0, most))
        shown.append(shortened(line));
    count = std::max(count, static_cast<std::size_t>(lines.size()));
    if (count > static_cast<std::size_t>(shown.size()))
        shown.append(QCoreApplication::translate("AppController", "… and %1 more")
                         .arg(count - static_cast<std::size_t>(shown.size())));
    return shown.join(QLatin1Char('\n'));
}
