#include "project/RecordingName.h"

#include "project/ProjectFile.h"

#include <QDir>
#include <QFileInfo>

QString recordingNameProblem(const QString &name)
{
    // What is a path on one system leads out of the folder of a project that comes from another.
    if (name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\')))
        return QStringLiteral("is a path");
#ifdef Q_OS_WIN
    if (name.contains(QLatin1Char(':')))
        return QStringLiteral("is a path");
#endif
    if (name == QLatin1String(".") || name == QLatin1String(".."))
        return QStringLiteral("is that of a folder");
    if (name.contains(QChar(QChar::Null)))
        return QStringLiteral("contains a zero character");
    return {};
}

QString otherProjectWithRecording(const QString &recording, const QString &projectFile)
{
    const QFileInfo own(projectFile);
    const QString recordingName = QFileInfo(recording).fileName();
    const QString sameName = QFileInfo(recordingName).completeBaseName();
    const QFileInfoList files = own.absoluteDir().entryInfoList(QDir::Files);
    for (const QFileInfo &file : files) {
        // Other suffixes are for the operator to give, as in "Room 1.2".
        const bool maybeProject = file.suffix() == QLatin1String("tpc") || file.baseName() == sameName;
        if (!maybeProject || file.fileName() == own.fileName() || file.fileName() == recordingName)
            continue;
        const ProjectFile project(file.filePath());
        if (!project.projectName().isEmpty() && QFileInfo(project.databasePath()).fileName() == recordingName)
            return file.fileName();
    }
    return {};
}
