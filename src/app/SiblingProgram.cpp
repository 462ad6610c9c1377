#include "app/SiblingProgram.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>

namespace {

QString quoted(const QString &projectFile)
{
    return QLatin1Char('\'') + projectFile + QLatin1Char('\'');
}

} // namespace

QString siblingCommandLine(const QString &program, const QString &projectFile)
{
    return program + QLatin1Char(' ') + quoted(projectFile);
}

bool startSibling(const QString &program, const QString &projectFile)
{
    QString executable = QStandardPaths::findExecutable(program, {QCoreApplication::applicationDirPath()});
    if (executable.isEmpty())
        executable = QStandardPaths::findExecutable(program);
    return !executable.isEmpty() && QProcess::startDetached(executable, {quoted(projectFile)});
}
