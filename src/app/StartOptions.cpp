#include "app/StartOptions.h"

#include "project/ProjectFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

QString projectFileProblem(const QString &path)
{
    const QString place = QLatin1Char('\n') + QDir::toNativeSeparators(path);
    const QFileInfo info(path);
    if (!info.exists())
        return QStringLiteral("The project file does not exist.") + place;
    if (info.isFile() && !QFile(path).open(QIODevice::ReadOnly))
        return QStringLiteral("The project file cannot be read.") + place;
    const ProjectFile file(path);
    if (!info.isFile() || (!file.readDevices() && file.projectName().isEmpty()))
        return QStringLiteral("This is not a project file.") + place;
    if (!file.readDevices())
        return QStringLiteral("There is no device information!") + place;
    const QString refusal = file.refusal();
    return refusal.isEmpty() ? QString() : refusal + place;
}
