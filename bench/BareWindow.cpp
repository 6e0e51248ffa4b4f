// An empty window, to compare the start of ours with: what Qt and the desktop take by themselves.

#include <QApplication>
#include <QWidget>

int main(int argumentCount, char** arguments)
{
    const QApplication application(argumentCount, arguments);
    QWidget window;
    window.setWindowTitle(QStringLiteral("Bare"));
    window.resize(400, 300);
    window.show();
    return QApplication::exec();
}
