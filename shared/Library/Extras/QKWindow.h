// The program's window: asks questions in sheets and returns the answer as a function would, puts
// its title together from a title and a suffix, and remembers its frame. Main thread only; while a
// question is up the event loop runs.
#pragma once

#include "platform/base/seams/AlertPanel.h"
#include "platform/desktop/panels/PopUpButton.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

class AlertPanelWindow;
class QAbstractButton;
class QAction;
class QDialog;

enum PromptResult : int {
    PromptResultOther = AlertPanel::answerOther, // the third button; also: a panel is up already
    PromptResultAlternate = AlertPanel::answerAlternate, // the second button, Escape
    PromptResultDefault = AlertPanel::answerDefault, // the first button, Return
};

class QKWindow : public QMainWindow
{
    Q_OBJECT

public:
    // Asked when the user wants to close the window; without an answer the window closes.
    struct Delegate {
        std::function<bool(QObject* sender)> windowShouldClose = {};
    };

    explicit QKWindow(QWidget* parent = nullptr);

    // A copy of another window, in the middle of the screen and under a frame name of its own.
    // Deprecated, and says so. Only a window made in this way has a lock: where it exists, a second
    // question asked on the same thread while the first is up waits for ever.
    static std::unique_ptr<QKWindow> initWithWindow(QKWindow& window, bool textured);

    ~QKWindow() override;

    void setDelegate(Delegate delegate) { _delegate = std::move(delegate); }

    // A question with up to three buttons; waits for the answer, a PromptResult. The message is
    // shown as it is.
    int runPromptSheetWithTitle(const QString& title, const QString& message,
        const QString& defaultButton, const QString& alternateButton, const QString& otherButton);

    // A message with one button; waits until it is dismissed. Dropped while a panel is up.
    void runMessageSheetWithTitle(const QString& title, const QString& message);

    // A message without a button, shown for a time in which nothing else happens.
    void runMessageSheetWithTitle(
        const QString& title, const QString& message, std::chrono::duration<double> timeout);

    // A sheet of the caller's; waits for the tag of the button that is pressed, 0 for Escape.
    int runPromptSheet(QDialog* sheet);

    // Ends the sheet that runPromptSheet() has up with the button's tag.
    void endPromptSheet(QAbstractButton* button);

    // A sheet that is not waited for. endSheet() hides the one shown last.
    void beginSheet(QDialog* window);
    void endSheet();

    // The visible title is "TITLE SUFFIX"; a title that was never set reads "null", which is
    // intended.
    void setTitle(const std::optional<QString>& title);
    void setTitleSuffix(const std::optional<QString>& suffix);
    void updateTitle();

    // Gives Return to the button with the tag 1 and Escape to the one with the tag 0, among the
    // panel's own children.
    static void setupKeyEquivalents(const QWidget* panel);

    // Wires the view's plain push buttons to endPromptSheet(), except those that have an action.
    // Looks at children of the view, then at the children's grandchildren and so on: every second
    // level is skipped, which is intended.
    void setButtonActionForView(const QWidget* view);

    void toggleToolbarShown(QObject* sender);
    void zoom(QObject* sender);

    // Titles and hides the toolbar's menu items, which are known by their object names; the result
    // tells whether the item is enabled.
    bool validateMenuItem(QAction* item) const;

    [[nodiscard]] bool hideToolbarLabelOnlyMode() const { return _hideToolbarLabelOnlyMode; }
    void setHideToolbarLabelOnlyMode(bool hide) { _hideToolbarLabelOnlyMode = hide; }
    [[nodiscard]] bool hideToolbarUseSmallIcons() const { return _hideToolbarUseSmallIcons; }
    void setHideToolbarUseSmallIcons(bool hide) { _hideToolbarUseSmallIcons = hide; }

    // Restores the frame kept in the user defaults under this name, and keeps it there from now on.
    void setFrameAutosaveName(const QString& name);
    [[nodiscard]] QString frameAutosaveName() const { return _frameAutosaveName; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] std::unique_lock<std::mutex> _takeTurn();
    int _runPanel(const AlertPanel::Alert& alert);
    [[nodiscard]] class QToolBar* _toolbar() const;
    void _saveFrame() const;

    std::unique_ptr<AlertPanelWindow> _alertPanel; // what is up, if anything
    QPointer<QDialog> _currentSheet; // borrowed: what beginSheet() showed last
    std::optional<QString> _title;
    std::optional<QString> _titleSuffix;
    std::unique_ptr<std::mutex> _lock; // lets questions take turns; see initWithWindow()
    bool _hideToolbarLabelOnlyMode = false;
    bool _hideToolbarUseSmallIcons = false;
    std::vector<QDialog*> _promptSheets; // borrowed: what runPromptSheet() has up, innermost last
    Delegate _delegate;
    QString _frameAutosaveName;
    QTimer _frameSaver; // runs when the frame has changed and is not saved
};
