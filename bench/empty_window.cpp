// What any program of these libraries pays before it has done anything: the reference for the station's start.

#include <QApplication>
#include <QDebug>
#include <QWidget>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QWidget window;
    window.resize(1024, 524);
    window.show();
    QCoreApplication::processEvents();
    qInfo() << "ready";
    return QApplication::exec();
}
