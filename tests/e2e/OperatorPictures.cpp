#include "Operator.h"

#include <QApplication>
#include <QCursor>
#include <QDir>
#include <QScreen>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <algorithm>

namespace {

/// New windows are on the screen, and paints that are under way have arrived, before a picture is taken.
void settle()
{
    const auto areExposed = [] {
        const QWidgetList windows = QApplication::topLevelWidgets();
        return std::all_of(windows.cbegin(), windows.cend(), [](const QWidget *window) {
            return !window->isVisible() || !window->windowHandle() || window->windowHandle()->isExposed();
        });
    };
    if (!QTest::qWaitFor(areExposed, patienceMs))
        qWarning("a window does not get onto the screen");
    for (int turn = 0; turn < 3; ++turn) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

} // namespace

bool Operator::pointAt(const QString &name, const QPoint &offset)
{
    const QWidget *widget = find(name);
    if (!widget)
        return false;
    QCursor::setPos(widget->mapToGlobal(offset));
    return true;
}

QImage Operator::image(const QString &name)
{
    const QWidget *widget = find(name);
    if (!widget)
        return {};
    const QRect part(widget->mapToGlobal(QPoint()), widget->size());
    return QGuiApplication::primaryScreen()->grabWindow(0, part.x(), part.y(), part.width(), part.height()).toImage();
}

void Operator::putPointerAway()
{
    QCursor::setPos(QGuiApplication::primaryScreen()->geometry().bottomRight());
}

void Operator::photograph(const QString &name)
{
    keep(name, QGuiApplication::primaryScreen()->geometry());
}

void Operator::photograph(const QString &name, const QString &window)
{
    const QWidget *widget = find(window);
    if (widget)
        keep(name, {widget->mapToGlobal(QPoint()), widget->size()});
}

void Operator::keep(const QString &name, const QRect &part)
{
    settle();
    const QPixmap picture =
        QGuiApplication::primaryScreen()->grabWindow(0, part.x(), part.y(), part.width(), part.height());
    const QString file = QStringLiteral(SCREENSHOTS "/%1.png").arg(name);
    if (!QDir().mkpath(QStringLiteral(SCREENSHOTS)) || !picture.save(file))
        qWarning("cannot keep %s", qUtf8Printable(file));
    else
        qInfo("screenshot: %s", qUtf8Printable(file));
}
