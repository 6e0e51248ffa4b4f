#include "platform/desktop/updates/UpdateSheet.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/desktop/panels/PlainLabel.h"
#include "platform/desktop/services/Workspace.h"

#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{

constexpr int widthInCharacters = 60; // of the notes: what reads well
constexpr int heightInLines = 12;
constexpr int buttonsOfTitleBarInCharacters = 16;

void makeSheet(QDialog& dialog)
{
    dialog.setAttribute(Qt::WA_DeleteOnClose);
    dialog.setWindowTitle(UpdateSheet::tr("Software Update"));
}

} // namespace

UpdateSheet::UpdateSheet(const Offer& offer, QWidget* parent)
    : QDialog(parent)
{
    makeSheet(*this);
    setObjectName(QStringLiteral("updateSheet"));
    auto* layout = new QVBoxLayout(this);

    const QString name = QLatin1String(Bundle::name);
    auto* headline = PlainLabel::make(offer.isCritical
            ? tr("An important update of %1 is available.").arg(name)
            : tr("A new version of %1 is available.").arg(name),
        QStringLiteral("headline"), this);
    PlainLabel::setBold(headline);
    layout->addWidget(headline);
    layout->addWidget(PlainLabel::make(
        tr("%1 %2 can be downloaded; you have %3.").arg(name, offer.version, offer.hostVersion),
        QStringLiteral("versions"), this));
    if (!offer.whatIsNew.isEmpty())
        layout->addWidget(_makeNotes(offer.whatIsNew));
    layout->addWidget(_makeButtons(offer));
    setAccessibleName(headline->text());
}

QWidget* UpdateSheet::_makeNotes(const QString& whatIsNew)
{
    auto* notes = new QPlainTextEdit(whatIsNew, this);
    notes->setObjectName(QStringLiteral("whatIsNew"));
    notes->setAccessibleName(tr("What is new"));
    notes->setReadOnly(true);
    notes->setTabChangesFocus(true);
    const QFontMetrics metrics(notes->font());
    notes->setMinimumSize(
        metrics.averageCharWidth() * widthInCharacters, metrics.lineSpacing() * heightInLines);
    return notes;
}

QWidget* UpdateSheet::_makeButtons(const Offer& offer)
{
    auto* buttons = new QDialogButtonBox(this);
    auto* later = buttons->addButton(tr("&Not Now"), QDialogButtonBox::RejectRole);
    later->setObjectName(QStringLiteral("notNow"));
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    const auto connectPage = [this](QPushButton* button, const QUrl& page) {
        connect(button, &QPushButton::clicked, this,
            [page] { Workspace::sharedWorkspace().openURL(page); });
    };
    if (offer.whatIsNew.isEmpty() && offer.notesPage.isValid()) {
        auto* notes = buttons->addButton(tr("&What Is New"), QDialogButtonBox::ActionRole);
        notes->setObjectName(QStringLiteral("openNotes"));
        connectPage(notes, offer.notesPage);
    }
    if (offer.page.isValid()) {
        auto* open = buttons->addButton(tr("&Open Download Page"), QDialogButtonBox::AcceptRole);
        open->setObjectName(QStringLiteral("openPage"));
        open->setDefault(true);
        open->setFocus();
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connectPage(open, offer.page);
    }
    return buttons;
}

QDialog* UpdateSheet::message(const QString& text, const QString& information, QWidget* parent)
{
    auto* sheet = new QMessageBox(parent);
    makeSheet(*sheet);
    sheet->setObjectName(QStringLiteral("updateMessage"));
    sheet->setTextFormat(Qt::PlainText);
    sheet->setText(text);
    sheet->setInformativeText(information);
    if (auto* label = sheet->findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel")))
        label->setTextFormat(Qt::PlainText); // which the box's own format does not reach
    // As wide as its title bar needs.
    if (auto* label = sheet->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
        const QFontMetrics metrics(label->font());
        label->setMinimumWidth(metrics.horizontalAdvance(sheet->windowTitle())
            + metrics.averageCharWidth() * buttonsOfTitleBarInCharacters);
    }
    sheet->setAccessibleName(text);
    sheet->setStandardButtons(QMessageBox::Ok);
    return sheet;
}
