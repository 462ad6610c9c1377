// The station without the splash's fixed wait: it says when its dashboard stands painted for the first time.

#include "app/StartUp.h"

#include <QApplication>
#include <QDebug>
#include <QEvent>
#include <QTimer>

namespace {

/// Waits for the first tile to be painted; the window paints all its parts at one go.
class FirstPaint : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Paint || watched->objectName() != QLatin1String("DashBoardDeviceItem"))
            return false;
        qApp->removeEventFilter(this);
        QTimer::singleShot(0, this, [] { qInfo() << "painted"; });
        return false;
    }
};

} // namespace

int main(int argc, char **argv)
{
    installMessagePattern();
    enableHighDensity();
    QApplication application(argc, argv);
    FirstPaint firstPaint;
    application.installEventFilter(&firstPaint);
    return runStation(application, {}, [](unsigned long) {});
}
