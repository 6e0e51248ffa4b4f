#include "platform/desktop/panels/PopUpButton.h"

#include "platform/desktop/panels/AccessiblePopUp.h"
#include "platform/desktop/panels/ComboBoxText.h"

#include <QAction>
#include <QActionGroup>
#include <QKeyEvent>
#include <QMenu>
#include <QStyleOptionComboBox>

#include <algorithm>

namespace
{

// Wide enough for most folders' paths, narrow enough for the window.
constexpr int widestInCharacters = 48;
constexpr int narrowestInCharacters = 12;
constexpr int alwaysWholeInCharacters = 28; // shorter titles than these

QString withoutMnemonic(QString title)
{
    return title.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

PopUpButton::PopUpButton(QWidget* parent)
    : QPushButton(parent)
    , _group(new QActionGroup(this))
{
    AccessiblePopUp::install();
    setMenu(new QMenu(this));
    setFocusPolicy(Qt::StrongFocus);
    connect(menu(), &QMenu::aboutToShow, this, [this] {
        _validate();
        menu()->setMinimumWidth(width());
        if (_selected >= 0)
            menu()->setActiveAction(_rows[_selected].action);
    });
}

PopUpButton::~PopUpButton() = default;

void PopUpButton::addItemWithTitle(const QString& title)
{
    const auto same
        = std::ranges::find(_rows, title, [](const Row& row) { return row.item.title; });
    if (same != _rows.end())
        removeItemAtIndex(static_cast<int>(same - _rows.begin()));

    auto* action = new QAction(withoutMnemonic(title), this);
    connect(action, &QAction::triggered, this, [this, action] { _choose(action); });
    action->setActionGroup(_group);
    menu()->addAction(action);
    addAction(action);
    _rows.push_back({.item = {.title = title}, .action = action});
    if (_selected < 0)
        _select(0);
}

void PopUpButton::removeItemAtIndex(int index)
{
    // Deleted later: it may be the very action that leads here.
    QAction* action = _rows[index].action;
    menu()->removeAction(action);
    removeAction(action);
    action->deleteLater();
    _rows.erase(_rows.begin() + index);
    if (index == _selected)
        _selected = _rows.empty() ? -1 : 0;
    else if (index < _selected)
        --_selected;
    update();
}

PopUpMenuItem PopUpButton::itemAtIndex(int index) const
{
    return _rows.at(index).item;
}

bool PopUpButton::isItemEnabledAtIndex(int index) const
{
    return _isEnabled(_rows.at(index).item);
}

void PopUpButton::setItemAtIndex(int index, const PopUpMenuItem& item)
{
    Row& row = _rows.at(index);
    const QString title = row.item.title;
    row.item = item;
    row.item.title = title;
    row.action->setMenu(item.submenu);
    setKeyEquivalentAtIndex(index, item.keyEquivalent);
}

void PopUpButton::setKeyEquivalentAtIndex(int index, const QString& keyEquivalent)
{
    Row& row = _rows.at(index);
    row.item.keyEquivalent = keyEquivalent;
    row.action->setShortcut(keyEquivalent.isEmpty()
            ? QKeySequence()
            : QKeySequence(QLatin1String("Ctrl+") + keyEquivalent));
}

int PopUpButton::selectedTag() const
{
    return _selected < 0 ? -1 : _rows[_selected].item.tag;
}

QString PopUpButton::selectedTitle() const
{
    return _selected < 0 ? QString() : _rows[_selected].item.title;
}

void PopUpButton::selectItemWithTag(int tag)
{
    const auto found = std::ranges::find(_rows, tag, [](const Row& row) { return row.item.tag; });
    if (found != _rows.end())
        _select(static_cast<int>(found - _rows.begin()));
}

void PopUpButton::_select(int index)
{
    _selected = index;
    AccessiblePopUp::tellChoice(this);
    updateGeometry();
    update();
}

void PopUpButton::_choose(const QAction* action)
{
    const auto found = std::ranges::find(_rows, action, [](const Row& row) { return row.action; });
    if (found == _rows.end() || !_isEnabled(found->item))
        return;
    if (found->item.action.isEmpty()) {
        _select(static_cast<int>(found - _rows.begin()));
        Q_EMIT selectedTagChanged(selectedTag());
        return;
    }
    const QByteArray method = found->item.action; // the row may go with what it does
    [[maybe_unused]] const bool isInvoked
        = QMetaObject::invokeMethod(found->item.target, method.constData(), Q_ARG(QObject*, this));
    Q_ASSERT_X(isInvoked, "the target has no action", method.constData());
}

bool PopUpButton::_isEnabled(const PopUpMenuItem& item) const
{
    const auto* validation = dynamic_cast<const MenuItemValidation*>(item.target);
    return !_autoenablesItems || validation == nullptr || validation->validateMenuItem(item);
}

void PopUpButton::_validate()
{
    for (const Row& row : _rows) {
        row.action->setEnabled(_isEnabled(row.item));
        row.action->setCheckable(row.item.action.isEmpty() && row.item.submenu == nullptr);
        row.action->setChecked(_selected >= 0 && row.action == _rows[_selected].action);
    }
}

void PopUpButton::sizeToFit()
{
    updateGeometry();
    adjustSize();
}

QSize PopUpButton::_sizeFor(int titleWidth) const
{
    const int unit = fontMetrics().averageCharWidth();
    const QSize contents(
        std::clamp(titleWidth, narrowestInCharacters * unit, widestInCharacters * unit),
        fontMetrics().height());
    QStyleOptionComboBox option;
    option.initFrom(this);
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, contents, this);
}

QSize PopUpButton::sizeHint() const
{
    int widest = 0;
    for (const Row& row : _rows)
        widest = std::max(widest, fontMetrics().horizontalAdvance(row.item.title));
    return _sizeFor(widest);
}

QSize PopUpButton::minimumSizeHint() const
{
    return _sizeFor(std::min(fontMetrics().horizontalAdvance(selectedTitle()),
        alwaysWholeInCharacters * fontMetrics().averageCharWidth()));
}

void PopUpButton::paintEvent(QPaintEvent* /*event*/)
{
    QStyleOptionComboBox option;
    option.initFrom(this);
    option.subControls = QStyle::SC_All;
    option.frame = true;
    if (isDown())
        option.state |= QStyle::State_Sunken;
    option.currentText = selectedTitle();
    const bool fits = ComboBoxText::paint(this, option) == option.currentText;
    setToolTip(fits ? QString() : option.currentText);
}

void PopUpButton::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        showMenu();
        break;
    default:
        QPushButton::keyPressEvent(event);
    }
}
