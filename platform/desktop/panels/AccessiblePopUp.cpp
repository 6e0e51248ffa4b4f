#include "platform/desktop/panels/AccessiblePopUp.h"

#include "platform/desktop/panels/PopUpButton.h"

#include <QAccessibleWidget>

namespace
{

// Text that is neither edited nor selected.
class ComboBox : public QAccessibleWidget, public QAccessibleTextInterface
{
public:
    explicit ComboBox(PopUpButton* button)
        : QAccessibleWidget(button, QAccessible::ComboBox)
    {
        addControllingSignal(QStringLiteral("pressed()"));
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this)
                                                  : QAccessibleWidget::interface_cast(type);
    }
    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = true;
        state.readOnly = true;
        return state;
    }
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? _choice() : QAccessibleWidget::text(kind);
    }

    QStringList actionNames() const override { return {showMenuAction(), setFocusAction()}; }
    void doAction(const QString& name) override
    {
        if (name == showMenuAction() && widget()->isEnabled())
            QMetaObject::invokeMethod(widget(), "showMenu", Qt::QueuedConnection);
        else
            QAccessibleWidget::doAction(name);
    }

    QString text(int startOffset, int endOffset) const override
    {
        return _choice().mid(startOffset, endOffset - startOffset);
    }
    int characterCount() const override { return static_cast<int>(_choice().size()); }
    QString attributes(int /*offset*/, int* startOffset, int* endOffset) const override
    {
        *startOffset = 0;
        *endOffset = characterCount();
        return {};
    }
    QRect characterRect(int /*offset*/) const override { return rect(); }
    int offsetAtPoint(const QPoint& /*point*/) const override { return 0; }
    int cursorPosition() const override { return 0; }
    void setCursorPosition(int /*position*/) override { }
    int selectionCount() const override { return 0; }
    void selection(int /*index*/, int* startOffset, int* endOffset) const override
    {
        *startOffset = *endOffset = 0;
    }
    void addSelection(int /*startOffset*/, int /*endOffset*/) override { }
    void removeSelection(int /*index*/) override { }
    void setSelection(int /*index*/, int /*startOffset*/, int /*endOffset*/) override { }
    void scrollToSubstring(int /*startIndex*/, int /*endIndex*/) override { }

private:
    [[nodiscard]] QString _choice() const
    {
        const auto* button = qobject_cast<const PopUpButton*>(widget());
        return button->selectedTitle();
    }
};

QAccessibleInterface* make(const QString& /*className*/, QObject* object)
{
    auto* button = qobject_cast<PopUpButton*>(object);
    return button != nullptr ? new ComboBox(button) : nullptr;
}

} // namespace

void AccessiblePopUp::install()
{
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(make);
        return true;
    }();
}

void AccessiblePopUp::tellChoice(PopUpButton* button)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(button, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}
