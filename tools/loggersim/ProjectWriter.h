#pragma once

#include <QList>
#include <QString>

namespace loggersim {

class SimLogger;

/// Writes a station project that fits the loggers: named after their places, spread over the four dashboards.
/// False, and the reason in @p error, when they are too many or the file cannot be written.
bool writeProject(const QString &path, int intervalMs, const QList<SimLogger *> &loggers, QString *error);

/// Writes station settings below @p folder that open this project at start and record by themselves.
bool writeSettings(const QString &folder, const QString &projectPath, bool keepAlive, QString *error);

} // namespace loggersim
