#include "platform/desktop/panels/AlertPanelWindow.h"

#include "platform/desktop/panels/PlainLabel.h"
#include "platform/desktop/panels/Tag.h"
#include "platform/desktop/panels/WrappedText.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QMainWindow>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

// A line that people read without losing their place.
constexpr int messageWidthInCharacters = 52;

constexpr int widest = 480; // the panel, unless its buttons take more

// The program may be in the background when it has something to say.
QWidget* windowInFront()
{
    if (QWidget* active = QApplication::activeWindow())
        return active;
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto main = std::ranges::find_if(windows, [](const QWidget* window) {
        return window->isVisible() && qobject_cast<const QMainWindow*>(window) != nullptr;
    });
    return main == windows.end() ? nullptr : *main;
}

// Of alerts that come without the window: they are in English. Others are translated already.
constexpr const char* untranslated[] = {
    QT_TRANSLATE_NOOP("AlertPanel", "Error"),
    QT_TRANSLATE_NOOP("AlertPanel", "Unable to write to '%1'"),
    QT_TRANSLATE_NOOP("AlertPanel", "Unable to replace existing file at '%1'"),
    QT_TRANSLATE_NOOP("AlertPanel", "OK"),
};

void translate(std::string& text)
{
    if (std::ranges::find(untranslated, text) != std::end(untranslated))
        text = QCoreApplication::translate("AlertPanel", text.c_str()).toStdString();
}

AlertPanel::Alert translated(AlertPanel::Alert alert)
{
    for (std::string* text : {&alert.title, &alert.message, &alert.defaultButton})
        translate(*text);
    return alert;
}

} // namespace

AlertPanelWindow::AlertPanelWindow(const AlertPanel::Alert& alert, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(QString::fromStdString(alert.title));
    auto* icon = new QLabel(this);
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    const QIcon image = QApplication::windowIcon();
    icon->setPixmap(
        (image.isNull() ? style()->standardIcon(QStyle::SP_MessageBoxInformation) : image)
            .pixmap(size, size));
    auto* whole = new QVBoxLayout(this);
    auto* top = new QHBoxLayout;
    const QMargins margins = whole->contentsMargins();
    const int width = std::min(fontMetrics().averageCharWidth() * messageWidthInCharacters,
        widest - margins.left() - margins.right() - size - whole->spacing());
    auto* title
        = PlainLabel::make(QString::fromStdString(alert.title), QStringLiteral("alertTitle"), this);
    PlainLabel::setBold(title);
    title->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    title->setFixedSize(width, title->heightForWidth(width));
    auto* message = new WrappedText(QString::fromStdString(AlertPanel::text(alert)), width, this);
    message->setObjectName(QStringLiteral("alertMessage"));
    setAccessibleDescription(message->toPlainText());

    auto* texts = new QVBoxLayout;
    texts->addWidget(title);
    texts->addWidget(message);
    texts->addStretch(1);
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addLayout(texts, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    // The order of the desktop: what confirms stands last.
    _addButton(*buttons, alert.otherButton, AlertPanel::answerOther);
    _addButton(*buttons, alert.alternateButton, AlertPanel::answerAlternate);
    _addButton(*buttons, alert.defaultButton, AlertPanel::answerDefault);
    whole->addLayout(top, 1);
    whole->addLayout(buttons);
    whole->setSizeConstraint(QLayout::SetFixedSize);
}

void AlertPanelWindow::_addButton(QHBoxLayout& row, const std::string& title, int tag)
{
    if (title.empty())
        return;
    auto* button = new QPushButton(QString::fromStdString(title), this);
    Tag::set(button, tag);
    button->setAutoDefault(false); // the framed button stays the one that Return presses
    connect(button, &QPushButton::clicked, this, [this, tag] { done(tag); });
    row.addWidget(button);
    if (tag == AlertPanel::answerDefault) {
        button->setDefault(true);
        button->setFocus();
    }
}

void AlertPanelWindow::presentAlerts()
{
    AlertPanel::setPresenter([](const AlertPanel::Alert& alert) {
        AlertPanelWindow panel(translated(alert), windowInFront());
        return panel.exec();
    });
}
