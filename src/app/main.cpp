#include "app/StartUp.h"

#include <QApplication>

int main(int argc, char **argv)
{
    installMessagePattern();
    QApplication application(argc, argv);
    return runStation(application);
}
