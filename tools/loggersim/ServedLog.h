#pragma once

#include <QFile>
#include <QObject>

namespace loggersim {

class SimLogger;

/// Writes down every reading that is served, as it happens, one a line: key, values and the time of its poll in
/// Unix milliseconds, separated by tabs.
class ServedLog : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Begins an empty file. False when it cannot be written; errorString() says why.
    bool open(const QString &path);
    QString errorString() const { return m_file.errorString(); }
    void follow(const SimLogger *logger);

private:
    QFile m_file;
};

} // namespace loggersim
