#include "app/StartUp.h"

#include <QApplication>

int main(int argc, char **argv)
{
    installMessagePattern();
    enableHighDensity();
    QApplication application(argc, argv);
    return runStation(application);
}
