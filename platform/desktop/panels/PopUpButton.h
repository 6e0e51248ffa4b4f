// A button that shows the selected item of its menu and opens the menu by mouse or keyboard. Looks
// like the desktop's own combo box.
#pragma once

#include <QByteArray>
#include <QPushButton>
#include <QString>

#include <memory>
#include <vector>

class QAction;
class QActionGroup;

// One row of a pop-up's menu. Choosing a row without an action selects it; a row with an action is
// a command, which never becomes the selection.
struct PopUpMenuItem {
    QString title;
    int tag = 0;
    QObject* target = nullptr; // borrowed: receives the action, and is asked for its validity
    QByteArray action = {}; // the name of an invokable method of the target that takes a QObject*
    QString keyEquivalent = {}; // with Control; works as long as the window has the keyboard
    QMenu* submenu = nullptr; // borrowed: a row that opens it
};

// What a target implements to enable and disable the items that name it.
class MenuItemValidation
{
public:
    virtual ~MenuItemValidation() = default;
    [[nodiscard]] virtual bool validateMenuItem(const PopUpMenuItem& item) const = 0;
};

class PopUpButton : public QPushButton
{
    Q_OBJECT
    // Bound to what the selection means. It notifies of the user's choices only: rebuilding the
    // menu changes nothing in what it stands for.
    Q_PROPERTY(int selectedTag READ selectedTag WRITE selectItemWithTag NOTIFY selectedTagChanged
            USER true)

public:
    explicit PopUpButton(QWidget* parent = nullptr);
    ~PopUpButton() override;

    // When set, the items' targets are asked each time before the menu opens and before a key
    // equivalent is obeyed. An item whose target does not validate is always enabled.
    void setAutoenablesItems(bool flag) { _autoenablesItems = flag; }

    // Appends an item without a target; one that has the title already is replaced by it.
    void addItemWithTitle(const QString& title);
    void removeItemAtIndex(int index);

    [[nodiscard]] int numberOfItems() const { return static_cast<int>(_rows.size()); }
    [[nodiscard]] PopUpMenuItem itemAtIndex(int index) const;
    [[nodiscard]] bool isItemEnabledAtIndex(int index) const;

    // Replaces everything of an item but its title.
    void setItemAtIndex(int index, const PopUpMenuItem& item);
    void setKeyEquivalentAtIndex(int index, const QString& keyEquivalent);

    // The tag of the selected item; -1 when nothing is selected.
    [[nodiscard]] int selectedTag() const;

    [[nodiscard]] QString selectedTitle() const;

    // Selects the first such item; without one, the selection stays.
    void selectItemWithTag(int tag);

    // Takes the width that the widest item needs.
    void sizeToFit();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    void selectedTagChanged(int tag);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Row {
        PopUpMenuItem item;
        QAction* action = nullptr; // in the menu, and the button's for its key equivalent
    };

    [[nodiscard]] bool _isEnabled(const PopUpMenuItem& item) const;
    [[nodiscard]] QSize _sizeFor(int titleWidth) const;
    void _validate();
    void _select(int index);
    void _choose(const QAction* action);

    std::vector<Row> _rows;
    QActionGroup* _group; // one item is checked
    int _selected = -1;
    bool _autoenablesItems = false;
};
