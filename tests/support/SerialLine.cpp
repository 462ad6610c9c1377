#include "support/SerialLine.h"

#include <QFile>

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

SerialLine::SerialLine(QObject *parent) : QObject(parent)
{
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0)
        return;
    m_portName = QFile::decodeName(::ptsname(m_master));
    m_slave = ::open(QFile::encodeName(m_portName).constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings{};
    ::tcgetattr(m_slave, &settings);
    ::cfmakeraw(&settings);
    ::tcsetattr(m_slave, TCSANOW, &settings);
    m_notifier = std::make_unique<QSocketNotifier>(m_master, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &SerialLine::readBytes);
}

SerialLine::~SerialLine()
{
    unplug();
}

QString SerialLine::portName() const
{
    return m_portName;
}

QByteArray SerialLine::received() const
{
    return m_received;
}

void SerialLine::send(const QByteArray &bytes)
{
    if (::write(m_master, bytes.constData(), static_cast<size_t>(bytes.size())) != bytes.size())
        qFatal("the pseudo terminal took fewer bytes than it was given");
}

void SerialLine::unplug()
{
    m_notifier.reset();
    if (m_slave >= 0)
        ::close(m_slave);
    if (m_master >= 0)
        ::close(m_master);
    m_slave = -1;
    m_master = -1;
}

void SerialLine::readBytes()
{
    std::array<char, 4096> buffer{};
    const ssize_t count = ::read(m_master, buffer.data(), buffer.size());
    if (count <= 0)
        return;
    m_received.append(buffer.data(), static_cast<int>(count));
    emit bytesReceived();
}
