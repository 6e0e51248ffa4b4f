#include "app/window/MainInterface.h"

#include "app/window/AppController.h"
#include "app/window/ArchiveNameValidator.h"
#include "app/window/DropArea.h"
#include "platform/desktop/panels/FontScale.h"
#include "platform/desktop/settings/Bindings.h"
#include "shared/Library/Archiver/Archiver.h"
#include "ui_AccessoryView.h"
#include "ui_EmailWindow.h"
#include "ui_MainWindow.h"
#include "ui_ProgressWindow.h"

#include <QScreen>
#include <QShortcut>

namespace
{

// To what it needs with this font, if there is room for it.
void enlarge(QKWindow& window, int leastWidth)
{
    const QSize scaled = (QSizeF(window.size()) * FontScale::of(window)).toSize();
    window.resize(scaled.expandedTo({leastWidth, 0}).boundedTo(window.screen()->availableSize()));
}

void connectMenus(const Ui::MainWindow& form, AppController& controller, QKWindow& window)
{
    using Action = void (AppController::*)(QObject*);
    const std::pair<QAction*, Action> actions[] = {
        {form.chooseFiles, &AppController::chooseFiles},
        {form.terminate, &AppController::terminate},
        {form.debug, &AppController::debug},
        {form.paste, &AppController::paste},
        {form.showPreference, &AppController::showPreference},
        {form.showHelp, &AppController::showHelp},
        {form.visitHomePage, &AppController::visitWebsite},
        {form.visitForum, &AppController::visitWebsite},
        {form.visitSharePage, &AppController::visitWebsite},
        {form.visitCommentPage, &AppController::visitWebsite},
        {form.visitShop, &AppController::visitShop},
        {form.checkForUpdates, &AppController::checkForUpdates},
        {form.showAbout, &AppController::showAbout},
    };
    for (const auto& [item, action] : actions)
        QObject::connect(item, &QAction::triggered, &controller,
            [item = item, action = action, &controller] { (controller.*action)(item); });
    QObject::connect(form.performClose, &QAction::triggered, &window, &QWidget::close);
    QObject::connect(
        form.performMiniaturize, &QAction::triggered, &window, &QWidget::showMinimized);
    QObject::connect(form.performZoom, &QAction::triggered, &window,
        [&window, item = form.performZoom] { window.zoom(item); });
}

// What the box and the line under it say besides a drag, and the box's keyboard focus.
void connectBox(const Ui::MainWindow& form, AppController& controller)
{
    DropView* box = form.saveDropView;
    QObject::connect(box, &DropView::filesDropped, &controller,
        [&controller, box] { controller.startProcessing(box); });
    QObject::connect(
        box, &DropView::clicked, &controller, [&controller, box] { controller.chooseFiles(box); });
    QObject::connect(
        box, &DropView::droppedMeanwhile, &controller, &AppController::droppedMeanwhile);
    const auto showLines = [&controller, box, line = form.waitingLabel] {
        box->setHint(AppController::hint());
        line->setText(controller.waitingText());
        line->setVisible(!line->text().isEmpty());
    };
    QObject::connect(&controller, &AppController::waitingChanged, box, showLines);
    QObject::connect(&controller, &AppController::acceptsFilesChanged, box, showLines);
    QObject::connect(
        &controller, &AppController::acceptsFilesChanged, box, [box] { box->setFocus(); },
        Qt::QueuedConnection); // it lost it when it was shut
    showLines();
}

} // namespace

MainInterface::MainInterface(AppController& controller)
    : _emailWindow(new QDialog(&_window))
    , _progressWindow(new ProgressSheet(&_window))
    , _accessoryView(new QWidget(&_window))
{
    Ui::MainWindow window;
    window.setupUi(&_window);
    enlarge(_window, window.footBar->sizeHint().width());
    Ui::EmailWindow email;
    email.setupUi(_emailWindow);
    email.nameField->setValidator(new ArchiveNameValidator(_emailWindow));
    const Ui::ProgressWindow& progress = _progressWindow->form();
    Ui::AccessoryView accessory;
    accessory.setupUi(_accessoryView);
    _accessoryView->hide(); // until the panel takes it in
    accessory.typePop->addItem(
        QCoreApplication::translate("AccessoryView", "Zip"), int{ArchiveTypePlainZip});
    accessory.typePop->addItem(
        QCoreApplication::translate("AccessoryView", "Zip with extended attributes"),
        int{ArchiveTypeMacZip});

    connectMenus(window, controller, _window);
    QObject::connect(window.showManual, &QAction::triggered, &_manual, [this] { _manual.show(); });
    _window.setDelegate({.windowShouldClose
        = [&controller](QObject* sender) { return controller.windowShouldClose(sender); }});
    connectBox(window, controller);
    auto* wholeWindow = new DropArea(*window.saveDropView);
    wholeWindow->add(&_window);
    wholeWindow->add(_progressWindow);
    // The keys of both windows work in either.
    _progressWindow->addActions({window.performClose, window.terminate});
    QObject::connect(new QShortcut(Qt::Key_Escape, &_window), &QShortcut::activated, &controller,
        [&controller] { controller.cancel(nullptr); });
    for (QPushButton* button : {email.confirmButton, email.cancelButton})
        QObject::connect(button, &QPushButton::clicked, &controller,
            [&controller, button] { controller.dismissSheet(button); });
    QObject::connect(progress.cancelButton, &QPushButton::clicked, &controller,
        [&controller, button = progress.cancelButton] { controller.cancel(button); });
    QObject::connect(_progressWindow, &ProgressSheet::cancelled, &controller,
        [&controller, sheet = _progressWindow] { controller.cancel(sheet); });

    controller.awakeFromNib({.mainMenu = window.mainMenu,
        .mainWindow = &_window,
        .destinationPop = window.destinationPop,
        .advertTextView = window.advertTextView,
        .emailWindow = _emailWindow,
        .accessoryView = _accessoryView,
        .progressWindow = _progressWindow,
        .progress = progress.progress,
        .statusTF = progress.statusTF,
        .saveDropView = window.saveDropView});
    for (QWidget* form :
        {static_cast<QWidget*>(&_window), static_cast<QWidget*>(_emailWindow), _accessoryView})
        Bindings::bindAll(form, &controller);
}

MainInterface::~MainInterface() = default;
