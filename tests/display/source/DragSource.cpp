// A window from which anything can be dragged: `drag_source ACTION FORMAT`, with the data on
// standard input. ACTION, "copy" or "move", is all that it offers. After each drag it prints what
// was done by the drop: "copied", "moved" or "nothing".

#include <QApplication>
#include <QDrag>
#include <QFile>
#include <QMimeData>
#include <QMouseEvent>
#include <QWidget>

#include <cstdio>

namespace
{

class DragSource : public QWidget
{
public:
    DragSource(Qt::DropAction action, QString format, QByteArray content)
        : _action(action)
        , _format(std::move(format))
        , _data(std::move(content))
    {
        setWindowTitle(QStringLiteral("Source"));
        resize(200, 200);
    }

private:
    void mouseMoveEvent(QMouseEvent* /*event*/) override
    {
        auto* dragged = new QMimeData;
        dragged->setData(_format, _data);
        auto* drag = new QDrag(this); // lives on until the target has fetched the data
        drag->setMimeData(dragged);
        const Qt::DropAction done = drag->exec(_action);
        std::puts(done == Qt::CopyAction ? "copied" : done == Qt::MoveAction ? "moved" : "nothing");
        std::fflush(stdout);
    }

    const Qt::DropAction _action;
    const QString _format;
    const QByteArray _data;
};

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    QFile input;
    if (arguments.size() != 3 || !input.open(stdin, QIODevice::ReadOnly))
        return 2;
    DragSource source(arguments[1] == QLatin1String("move") ? Qt::MoveAction : Qt::CopyAction,
        arguments[2], input.readAll());
    source.show();
    return QApplication::exec();
}
