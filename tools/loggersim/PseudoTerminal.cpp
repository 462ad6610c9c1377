#include "loggersim/PseudoTerminal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace loggersim {

namespace {

constexpr int inputMax = 64 * 1024;

void closeEnd(int &end)
{
    if (end >= 0)
        ::close(end);
    end = -1;
}

/// Neither echo nor line editing: bytes written before the station sets up its end must not come back as commands.
bool makeRaw(int terminal)
{
    termios settings{};
    if (::tcgetattr(terminal, &settings) != 0)
        return false;
    ::cfmakeraw(&settings);
    return ::tcsetattr(terminal, TCSANOW, &settings) == 0;
}

} // namespace

PseudoTerminal::PseudoTerminal(QObject *parent) : QIODevice(parent) {}

PseudoTerminal::~PseudoTerminal()
{
    PseudoTerminal::close();
}

bool PseudoTerminal::open()
{
    close();
    if (!makePair()) {
        setErrorString(QString::fromLocal8Bit(std::strerror(errno)));
        close();
        return false;
    }
    m_readNotifier = std::make_unique<QSocketNotifier>(m_master, QSocketNotifier::Read);
    m_writeNotifier = std::make_unique<QSocketNotifier>(m_master, QSocketNotifier::Write);
    m_writeNotifier->setEnabled(false);
    connect(m_readNotifier.get(), &QSocketNotifier::activated, this, [this] { slotReadable(); });
    connect(m_writeNotifier.get(), &QSocketNotifier::activated, this, [this] { slotWritable(); });
    return QIODevice::open(QIODevice::ReadWrite | QIODevice::Unbuffered);
}

bool PseudoTerminal::makePair()
{
    std::array<char, 128> name{};
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0 ||
        ::ptsname_r(m_master, name.data(), name.size()) != 0)
        return false;
    // Held open: while nobody has the other end, reading here would fail over and over.
    m_slave = ::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    m_stationEnd = QString::fromLocal8Bit(name.data());
    return m_slave >= 0 && makeRaw(m_slave);
}

void PseudoTerminal::close()
{
    m_readNotifier.reset();
    m_writeNotifier.reset();
    closeEnd(m_slave);
    closeEnd(m_master);
    m_in.clear();
    m_out.clear();
    m_stationEnd.clear();
    if (isOpen())
        QIODevice::close();
}

qint64 PseudoTerminal::bytesAvailable() const
{
    return m_in.size() + QIODevice::bytesAvailable();
}

qint64 PseudoTerminal::bytesToWrite() const
{
    return m_out.size();
}

qint64 PseudoTerminal::readData(char *data, qint64 maxSize)
{
    const int count = static_cast<int>(std::min<qint64>(maxSize, m_in.size()));
    std::copy_n(m_in.constData(), count, data);
    m_in.remove(0, count);
    m_readNotifier->setEnabled(true);
    return count;
}

qint64 PseudoTerminal::writeData(const char *data, qint64 size)
{
    m_out.append(data, static_cast<int>(size));
    m_writeNotifier->setEnabled(true);
    return size;
}

void PseudoTerminal::slotReadable()
{
    std::array<char, 4096> buffer;
    const ssize_t count = ::read(m_master, buffer.data(), buffer.size());
    if (count <= 0)
        return;
    m_in.append(buffer.data(), static_cast<int>(count));
    if (m_in.size() >= inputMax)
        m_readNotifier->setEnabled(false);
    emit readyRead();
}

void PseudoTerminal::slotWritable()
{
    const ssize_t count = ::write(m_master, m_out.constData(), static_cast<size_t>(m_out.size()));
    if (count > 0)
        m_out.remove(0, static_cast<int>(count));
    // While the station does not read, the terminal's own buffer is full and this waits for it.
    if (m_out.isEmpty())
        m_writeNotifier->setEnabled(false);
    if (count > 0)
        emit bytesWritten(count);
}

} // namespace loggersim
