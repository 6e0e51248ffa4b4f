// How far a job is and how long it still takes, in the user's language.
#pragma once

#include "app/job/JobProgress.h"

#include <QCoreApplication>
#include <QString>

class ProgressText
{
    Q_DECLARE_TR_FUNCTIONS(ProgressText)

public:
    // "312 MB of 2.0 GB", and how fast once it is known; nothing where there are no bytes.
    [[nodiscard]] static QString sizesOf(const JobProgress& progress);

    // In words, and nothing until it is known.
    [[nodiscard]] static QString timeLeftOf(const JobProgress& progress);
};
