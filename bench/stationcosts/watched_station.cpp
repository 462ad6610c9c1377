// The station as it is, with a watch on its event loop: watched_station FIGURES SETTLE_MS MEASURE_MS
// The figures are written when the station has ended.

#include "app/StartUp.h"
#include "stationcosts/LoopWatch.h"

#include <QApplication>

int main(int argc, char **argv)
{
    installMessagePattern();
    enableHighDensity();
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        qFatal("usage: watched_station FIGURES SETTLE_MS MEASURE_MS");
    LoopWatch watch(arguments.at(2).toInt(), arguments.at(3).toInt());
    const int exitCode = runStation(application);
    watch.writeFigures(arguments.at(1));
    return exitCode;
}
