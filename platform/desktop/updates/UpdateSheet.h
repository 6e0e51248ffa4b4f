// Tells that there is a newer version, as a sheet on a window; Escape and "Not Now" close it.
// Whatever text comes from the feed is shown as plain text. Deletes itself when it closes.
#pragma once

#include <QDialog>
#include <QString>
#include <QUrl>

class UpdateSheet : public QDialog
{
    Q_OBJECT

public:
    struct Offer {
        QString version;
        QString hostVersion;
        QString whatIsNew; // empty: is not said
        QUrl notesPage; // says what is new where there is no text; invalid: there is none
        QUrl page; // to download from; invalid: there is none to open
        bool isCritical = false;
    };

    UpdateSheet(const Offer& offer, QWidget* parent);

    // A sheet that says one thing and has one button.
    static QDialog* message(const QString& text, const QString& information, QWidget* parent);

private:
    [[nodiscard]] QWidget* _makeNotes(const QString& whatIsNew);
    [[nodiscard]] QWidget* _makeButtons(const Offer& offer);
};
