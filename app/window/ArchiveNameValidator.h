// Makes of any text the name of a file that can get the extension of an archive.
#pragma once

#include <QValidator>

class ArchiveNameValidator : public QValidator
{
    Q_OBJECT

public:
    using QValidator::QValidator;

    State validate(QString& input, int& position) const override;
};
