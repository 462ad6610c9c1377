#include "dialogs/SharpPixmap.h"

#include <QFile>
#include <QGuiApplication>

QPixmap sharpPixmap(const QString &path)
{
    return sharpPixmap(path, qGuiApp->devicePixelRatio());
}

QPixmap sharpPixmap(const QString &path, qreal density)
{
    QString dense = path;
    dense.insert(path.lastIndexOf(QLatin1Char('.')), QStringLiteral("@2x"));
    return QPixmap(density > 1 && QFile::exists(dense) ? dense : path);
}
