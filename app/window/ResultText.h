// What there is to say of a request that has ended, in the user's language.
#pragma once

#include "app/job/ArchiveProblem.h"
#include "app/job/LeftOut.h"

#include <QString>
#include <QStringList>

namespace ResultText
{

// Why nothing was made: what could not be done, or else `otherwise` unless that is empty, and the
// reason.
[[nodiscard]] QString sentencesOf(const ArchiveProblem& problem, const QString& otherwise);

// What is missing and why, a line each.
[[nodiscard]] QStringList linesOf(const LeftOut& leftOut);

// The first lines, as far as they fit, and how many there are besides; `count` where there are more
// than are given.
[[nodiscard]] QString listed(const QStringList& lines, qsizetype most, std::size_t count = 0);

} // namespace ResultText
