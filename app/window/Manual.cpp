#include "app/window/Manual.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/desktop/services/PathText.h"
#include "platform/desktop/services/Workspace.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QLocale>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace
{

constexpr QSize windowSize{720, 640};

// Escape closes it. Its texts are links at most: Tab goes from one to the next.
std::unique_ptr<QDialog> makeWindow()
{
    auto window = std::make_unique<QDialog>();
    window->setObjectName(QStringLiteral("manualWindow"));
    auto* text = new QTextBrowser(window.get());
    text->setFrameShape(QFrame::NoFrame);
    QObject::connect(text, &QTextBrowser::sourceChanged, window.get(), [text, it = window.get()] {
        it->setWindowTitle(text->documentTitle());
        text->setAccessibleName(text->documentTitle());
    });
    auto* layout = new QVBoxLayout(window.get());
    layout->setContentsMargins({});
    layout->addWidget(text);
    window->resize(windowSize);
    return window;
}

} // namespace

// The menu's F1 reaches the main window alone, and not while a sheet is on it.
Manual::Manual()
{
    QCoreApplication::instance()->installEventFilter(this);
}

Manual::~Manual() = default;

std::optional<std::filesystem::path> Manual::page()
{
    QStringList languages = QLocale().uiLanguages();
    languages.append(QStringLiteral("en"));
    for (const QString& language : languages) {
        const std::string name = "help/" + language.section(u'-', 0, 0).toStdString();
        if (auto found = Bundle::main().pathForResource(name, "html"))
            return found;
    }
    return std::nullopt;
}

void Manual::show()
{
    if (const auto found = page())
        Workspace::sharedWorkspace().openPage(*found, this, [this, found](bool works) {
            if (!works)
                _showInWindow(*found);
        });
}

bool Manual::eventFilter(QObject* /*object*/, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if (!key->matches(QKeySequence::HelpContents))
        return false;
    if (!key->isAutoRepeat())
        show();
    return true;
}

void Manual::_showInWindow(const std::filesystem::path& page)
{
    if (!_window)
        _window = makeWindow();
    _window->findChild<QTextBrowser*>()->setSource(QUrl::fromLocalFile(PathText::textOf(page)));
    // An alert that waits for its answer blocks what is not modal itself.
    _window->hide();
    _window->setWindowModality(
        QApplication::activeModalWidget() != nullptr ? Qt::ApplicationModal : Qt::NonModal);
    _window->show();
    _window->raise();
    _window->activateWindow();
}
