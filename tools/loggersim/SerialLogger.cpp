#include "loggersim/SerialLogger.h"
#include "loggersim/Conversation.h"
#include "loggersim/UsbTree.h"

namespace loggersim {

SerialLogger::SerialLogger(const QString &key, const Climate &climate, quint32 seed, UsbTree *tree, int plug,
                           QObject *parent)
    : SimLogger(UsbInterface, key, climate, seed, parent), m_tree(tree), m_plug(plug)
{
    m_replug.setSingleShot(true);
    m_replug.setTimerType(Qt::PreciseTimer);
    connect(&m_replug, &QTimer::timeout, this, &SerialLogger::plugIn);
}

SerialLogger::~SerialLogger()
{
    pullOut();
}

QString SerialLogger::address() const
{
    return isPlugged() ? UsbTree::portName(m_plug) : QString();
}

bool SerialLogger::isPlugged() const
{
    return m_line.isOpen();
}

bool SerialLogger::plugIn()
{
    m_replug.stop();
    if (isPlugged())
        return true;
    if (!m_line.open())
        return false;
    new Conversation(&m_line, this, &m_line);
    if (m_tree->plugIn(m_plug, QLatin1String("ZP_SERIES__") + key(), m_line.stationEnd()))
        return true;
    pullOut();
    return false;
}

void SerialLogger::pullOut()
{
    m_replug.stop();
    if (!isPlugged())
        return;
    m_tree->pullOut(m_plug);
    qDeleteAll(m_line.findChildren<Conversation *>());
    m_line.close();
}

void SerialLogger::replug(int pauseMs)
{
    pullOut();
    m_replug.start(pauseMs);
}

QString SerialLogger::errorString() const
{
    return m_line.errorString();
}

} // namespace loggersim
