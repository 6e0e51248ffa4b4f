#include "platform/desktop/panels/AlertPanelWindow.h"

#include "platform/desktop/panels/PlainLabel.h"
#include "platform/desktop/panels/Tag.h"

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

QLabel* readableLabel(const std::string& text, const QString& objectName, QWidget* parent)
{
    QLabel* label = PlainLabel::make(QString::fromStdString(text), objectName, parent);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setMinimumWidth(label->fontMetrics().averageCharWidth() * messageWidthInCharacters);
    return label;
}

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
    QLabel* title = readableLabel(alert.title, QStringLiteral("alertTitle"), this);
    PlainLabel::setBold(title);
    QLabel* message = readableLabel(alert.message, QStringLiteral("alertMessage"), this);
    setAccessibleDescription(message->text());

    auto* texts = new QVBoxLayout;
    texts->addWidget(title);
    texts->addWidget(message, 1);
    auto* top = new QHBoxLayout;
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addLayout(texts, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    // The order of the desktop: what confirms stands last.
    _addButton(*buttons, alert.otherButton, AlertPanel::answerOther);
    _addButton(*buttons, alert.alternateButton, AlertPanel::answerAlternate);
    _addButton(*buttons, alert.defaultButton, AlertPanel::answerDefault);
    auto* whole = new QVBoxLayout(this);
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
        AlertPanelWindow panel(alert, windowInFront());
        return panel.exec();
    });
}
