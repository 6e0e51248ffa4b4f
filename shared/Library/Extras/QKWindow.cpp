#include "shared/Library/Extras/QKWindow.h"

#include "platform/desktop/panels/AlertPanelWindow.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/panels/Tag.h"
#include "platform/desktop/services/NotificationCenter.h"
#include "platform/desktop/settings/UserDefaults.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMetaMethod>
#include <QScreen>
#include <QToolBar>

#include <thread>

namespace
{

constexpr int labelOnlyMode = 3; // the tag of its menu item
constexpr std::chrono::milliseconds frameSaveDelay(400); // a drag of the window is one change

// Only the class itself: what is derived from it has ways of its own.
QPushButton* plainPushButton(QObject* object)
{
    return object->metaObject() == &QPushButton::staticMetaObject
        ? qobject_cast<QPushButton*>(object)
        : nullptr;
}

bool hasAction(const QPushButton* button)
{
    struct Access : QPushButton {
        using QPushButton::isSignalConnected; // protected, though it tells nothing secret
    };
    constexpr auto isSignalConnected = &Access::isSignalConnected;
    return (button->*isSignalConnected)(QMetaMethod::fromSignal(&QPushButton::clicked));
}

QList<QWidget*> subviews(const QWidget* view)
{
    return view->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
}

QString frameKey(const QString& autosaveName)
{
    return QLatin1String("Window Frame ") + autosaveName;
}

} // namespace

QKWindow::QKWindow(QWidget* parent)
    : QMainWindow(parent)
{
    _frameSaver.setSingleShot(true);
    _frameSaver.setInterval(frameSaveDelay);
    connect(&_frameSaver, &QTimer::timeout, this, &QKWindow::_saveFrame);
}

QKWindow::~QKWindow()
{
    if (_frameSaver.isActive())
        _saveFrame();
}

std::unique_ptr<QKWindow> QKWindow::initWithWindow(QKWindow& window, bool textured)
{
    qWarning("initWithWindow:textured:  DEPRECATED. STOP CALLING THIS.");
    auto copy = std::make_unique<QKWindow>();
    copy->setWindowFlags(window.windowFlags());
    // A textured background is the window's own instead of the desktop's plain one.
    copy->setAttribute(Qt::WA_StyledBackground, textured);
    copy->resize(
        window.centralWidget() != nullptr ? window.centralWidget()->size() : window.size());
    copy->_lock = std::make_unique<std::mutex>();
    copy->setTitle(window.windowTitle());
    copy->setMinimumSize(window.minimumSize());
    copy->setMaximumSize(window.maximumSize());
    copy->setDelegate(window._delegate);
    QWidget* focused = window.focusWidget();
    copy->setCentralWidget(window.takeCentralWidget());
    if (focused != nullptr)
        focused->setFocus();
    copy->move(copy->screen()->availableGeometry().center() - copy->rect().center());
    copy->setFrameAutosaveName(QLatin1String("QK") + window.frameAutosaveName());
    return copy;
}

std::unique_lock<std::mutex> QKWindow::_takeTurn()
{
    return _lock ? std::unique_lock(*_lock) : std::unique_lock<std::mutex>();
}

int QKWindow::runPromptSheetWithTitle(const QString& title, const QString& message,
    const QString& defaultButton, const QString& alternateButton, const QString& otherButton)
{
    const auto turn = _takeTurn();
    return _runPanel({.title = title.toStdString(),
        .message = message.toStdString(),
        .defaultButton = defaultButton.toStdString(),
        .alternateButton = alternateButton.toStdString(),
        .otherButton = otherButton.toStdString()});
}

void QKWindow::runMessageSheetWithTitle(const QString& title, const QString& message)
{
    const auto turn = _takeTurn();
    _runPanel({.title = title.toStdString(),
        .message = message.toStdString(),
        .defaultButton = QCoreApplication::translate("Localizable", "Okay").toStdString()});
}

// A refused prompt reads like a press of the third button, which is intended.
int QKWindow::_runPanel(const AlertPanel::Alert& alert)
{
    if (_alertPanel)
        return PromptResultOther;
    _alertPanel = std::make_unique<AlertPanelWindow>(alert, this);
    setupKeyEquivalents(_alertPanel.get());
    const int result = Sheets::runModal(_alertPanel.get(), this);
    _alertPanel.reset();
    return result;
}

void QKWindow::runMessageSheetWithTitle(
    const QString& title, const QString& message, std::chrono::duration<double> timeout)
{
    const auto turn = _takeTurn();
    AlertPanelWindow panel({.title = title.toStdString(), .message = message.toStdString()}, this);
    const auto end = std::chrono::steady_clock::now() + timeout;
    Sheets::begin(&panel, this);
    // Nothing is drawn while the thread sleeps, so what shows the sheet is done first.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    std::this_thread::sleep_until(end);
}

int QKWindow::runPromptSheet(QDialog* sheet)
{
    const auto turn = _takeTurn();
    setButtonActionForView(sheet);
    _promptSheets.push_back(sheet);
    const int result = Sheets::runModal(sheet, this);
    _promptSheets.pop_back();
    return result;
}

void QKWindow::endPromptSheet(QAbstractButton* button)
{
    if (!_promptSheets.empty())
        _promptSheets.back()->done(Tag::of(button));
}

void QKWindow::beginSheet(QDialog* window)
{
    _currentSheet = window;
    Sheets::begin(window, this);
}

void QKWindow::endSheet()
{
    if (_currentSheet)
        _currentSheet->hide();
}

void QKWindow::setTitle(const std::optional<QString>& title)
{
    _title = title;
    updateTitle();
}

void QKWindow::setTitleSuffix(const std::optional<QString>& suffix)
{
    _titleSuffix = suffix;
    updateTitle();
}

void QKWindow::updateTitle()
{
    QString visible = _title.value_or(QStringLiteral("null"));
    if (_titleSuffix)
        visible += QLatin1Char(' ') + *_titleSuffix;
    setWindowTitle(visible);
}

void QKWindow::setupKeyEquivalents(const QWidget* panel)
{
    for (QWidget* view : subviews(panel)) {
        QPushButton* button = plainPushButton(view);
        if (button == nullptr || !button->property(Tag::property).isValid())
            continue;
        if (Tag::of(button) == PromptResultAlternate)
            button->setShortcut(Qt::Key_Escape);
        else if (Tag::of(button) == PromptResultDefault)
            button->setShortcut(Qt::Key_Return);
    }
}

void QKWindow::setButtonActionForView(const QWidget* view)
{
    for (QWidget* subview : subviews(view)) {
        if (QPushButton* button = plainPushButton(subview)) {
            if (!hasAction(button) && !button->isCheckable())
                connect(button, &QPushButton::clicked, this,
                    [this, button] { endPromptSheet(button); });
            continue;
        }
        for (const QWidget* inner : subviews(subview))
            setButtonActionForView(inner);
    }
}

QToolBar* QKWindow::_toolbar() const
{
    return findChild<QToolBar*>(QString(), Qt::FindDirectChildrenOnly);
}

void QKWindow::toggleToolbarShown(QObject* /*sender*/)
{
    if (QToolBar* toolbar = _toolbar())
        toolbar->setVisible(toolbar->isHidden());
    NotificationCenter::defaultCenter().postNotificationName(QStringLiteral("ToggleToolbar"), this);
}

// The zoomed size is worked out without the toolbar.
void QKWindow::zoom(QObject* /*sender*/)
{
    QToolBar* toolbar = _toolbar();
    const bool hidesToolbar = toolbar != nullptr && !toolbar->isHidden();
    if (hidesToolbar)
        toolbar->hide();
    setWindowState(windowState() ^ Qt::WindowMaximized);
    if (hidesToolbar)
        toolbar->show();
}

bool QKWindow::validateMenuItem(QAction* item) const
{
    const QString action = item->objectName();
    if (action == QLatin1String("toggleToolbarShown")) {
        const QToolBar* toolbar = _toolbar();
        const bool isShown = toolbar != nullptr && !toolbar->isHidden();
        item->setText(isShown ? tr("Hide Toolbar") : tr("Show Toolbar"));
        item->setChecked(false);
        return true;
    }
    const bool isEnabled = item->isEnabled(); // a hidden item counts as disabled
    if ((_hideToolbarLabelOnlyMode && action == QLatin1String("changeToolbarDisplayMode")
            && Tag::of(item) == labelOnlyMode)
        || (_hideToolbarUseSmallIcons && action == QLatin1String("toggleUsingSmallToolbarIcons")))
        item->setVisible(false);
    return isEnabled;
}

void QKWindow::setFrameAutosaveName(const QString& name)
{
    _frameAutosaveName = name;
    if (name.isEmpty())
        return;
    const auto frame = UserDefaults::standardUserDefaults().stringForKey(frameKey(name));
    if (frame)
        restoreGeometry(QByteArray::fromBase64(frame->toLatin1()));
}

void QKWindow::_saveFrame() const
{
    if (!_frameAutosaveName.isEmpty())
        UserDefaults::standardUserDefaults().setObject(
            QString::fromLatin1(saveGeometry().toBase64()), frameKey(_frameAutosaveName));
}

void QKWindow::closeEvent(QCloseEvent* event)
{
    const bool closes = !_delegate.windowShouldClose || _delegate.windowShouldClose(this);
    event->setAccepted(closes);
}

void QKWindow::moveEvent(QMoveEvent* event)
{
    QMainWindow::moveEvent(event);
    _frameSaver.start();
}

void QKWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    _frameSaver.start();
}
