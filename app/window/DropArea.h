// Lets windows take drags for the box wherever they hover: the whole main window, and the sheet
// over it. The box highlights as if it were hovered itself. What holds no file of this computer is
// refused at once and changes nothing.
#pragma once

#include <QObject>

class DropView;
class QWidget;

class DropArea : public QObject
{
    Q_OBJECT

public:
    explicit DropArea(DropView& box);

    void add(QWidget* window);

protected:
    bool eventFilter(QObject* window, QEvent* event) override;

private:
    DropView& _box; // borrowed: the parent
};
