#include "loggersim/ServedLog.h"
#include "loggersim/SimLogger.h"

namespace loggersim {

bool ServedLog::open(const QString &path)
{
    m_file.setFileName(path);
    // Unbuffered: whoever reads along sees whole lines.
    return m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered);
}

void ServedLog::follow(const SimLogger *logger)
{
    const QByteArray key = logger->key().toLatin1();
    connect(logger, &SimLogger::readingServed, this, [this, key](const QByteArray &values, qint64 polledMs) {
        m_file.write(key + '\t' + values + '\t' + QByteArray::number(polledMs) + '\n');
    });
}

} // namespace loggersim
