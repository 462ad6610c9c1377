#include "loggersim/Fleet.h"
#include "loggersim/NetworkLogger.h"
#include "loggersim/SerialLogger.h"

#include <algorithm>

namespace loggersim {

namespace {

/// A locally administered address, so that no real device has it.
QString macKey(quint16 seed, int number)
{
    return QStringLiteral("02%1%2").arg(seed, 4, 16, QLatin1Char('0')).arg(number, 6, 16, QLatin1Char('0')).toUpper();
}

QString usbKey(quint16 seed, int number)
{
    return QStringLiteral("%1%2").arg(seed, 5, 10, QLatin1Char('0')).arg(number, 3, 10, QLatin1Char('0'));
}

} // namespace

Fleet::Fleet(quint16 seed, QObject *parent) : QObject(parent), m_seed(seed) {}

Fleet::~Fleet() = default;

NetworkLogger *Fleet::addNetworkLogger(const QHostAddress &address, quint16 port, QString *error)
{
    const int number = static_cast<int>(m_loggers.size());
    auto logger = std::make_unique<NetworkLogger>(macKey(m_seed, number + 1), climateOf(number), m_seed + number);
    if (!logger->listen(address, port)) {
        *error = QStringLiteral("cannot listen on %1 port %2: %3")
                     .arg(address.toString())
                     .arg(port)
                     .arg(logger->errorString());
        return nullptr;
    }
    NetworkLogger *added = logger.get();
    m_loggers.push_back(std::move(logger));
    if (m_discovery)
        m_discovery->add(added);
    return added;
}

SerialLogger *Fleet::addUsbLogger(QString *error)
{
    const int number = static_cast<int>(m_loggers.size());
    const auto isUsb = [](const auto &logger) {
        return logger->kind() == UsbInterface;
    };
    const int plug = static_cast<int>(std::count_if(m_loggers.begin(), m_loggers.end(), isUsb));
    auto logger =
        std::make_unique<SerialLogger>(usbKey(m_seed, plug + 1), climateOf(number), m_seed + number, &usbTree(), plug);
    if (!logger->plugIn()) {
        *error = QStringLiteral("cannot make a serial port: %1").arg(logger->errorString());
        return nullptr;
    }
    SerialLogger *added = logger.get();
    m_loggers.push_back(std::move(logger));
    return added;
}

bool Fleet::startDiscovery(const QHostAddress &address, quint16 port, QString *error)
{
    auto discovery = std::make_unique<DiscoveryResponder>();
    if (!discovery->bind(address, port)) {
        *error = QStringLiteral("cannot answer searches on %1 port %2: %3")
                     .arg(address.toString())
                     .arg(port)
                     .arg(discovery->errorString());
        return false;
    }
    m_discovery = std::move(discovery);
    for (const auto &logger : m_loggers) {
        if (const auto *networked = qobject_cast<const NetworkLogger *>(logger.get()))
            m_discovery->add(networked);
    }
    return true;
}

quint16 Fleet::discoveryPort() const
{
    return m_discovery ? m_discovery->port() : 0;
}

QList<SimLogger *> Fleet::loggers() const
{
    QList<SimLogger *> list;
    for (const auto &logger : m_loggers)
        list.append(logger.get());
    return list;
}

SimLogger *Fleet::find(const QString &keyOrNumber, QString *error) const
{
    for (const auto &logger : m_loggers) {
        if (logger->key() == keyOrNumber)
            return logger.get();
    }
    bool isNumber = false;
    const uint number = keyOrNumber.toUInt(&isNumber);
    if (isNumber && number >= 1 && number <= m_loggers.size())
        return m_loggers[number - 1].get();
    *error = QStringLiteral("there is no logger \"%1\"").arg(keyOrNumber);
    return nullptr;
}

bool Fleet::setFault(const QString &keyOrNumber, const QString &text, QString *error)
{
    SimLogger *logger = find(keyOrNumber, error);
    if (!logger)
        return false;
    const auto fault = parseFault(text, error);
    if (!fault)
        return false;
    const FaultScope own = logger->kind() == UsbInterface ? FaultScope::Usb : FaultScope::Network;
    if (const FaultScope scope = scopeOf(fault->kind); scope != FaultScope::Any && scope != own) {
        *error =
            QStringLiteral("a %1 logger cannot have the fault \"%2\"").arg(logger->kindText(), faultName(fault->kind));
        return false;
    }
    if (auto *usb = qobject_cast<SerialLogger *>(logger))
        return setUsbFault(usb, *fault, error);
    logger->setFault(*fault);
    return true;
}

bool Fleet::setUsbFault(SerialLogger *logger, const Fault &fault, QString *error)
{
    switch (fault.kind) {
    case FaultKind::Replug:
        logger->setFault({});
        logger->replug(fault.number);
        return true;
    case FaultKind::Swap:
        return swap(logger, fault.text, error);
    case FaultKind::Unplug:
        logger->setFault(fault);
        logger->pullOut();
        return true;
    default:
        logger->setFault(fault);
        if (logger->plugIn())
            return true;
        *error = QStringLiteral("cannot make a serial port: %1").arg(logger->errorString());
        return false;
    }
}

bool Fleet::swap(SerialLogger *logger, const QString &otherKey, QString *error)
{
    SimLogger *found = find(otherKey, error);
    if (!found)
        return false;
    auto *other = qobject_cast<SerialLogger *>(found);
    if (!other || other == logger) {
        *error = QStringLiteral("\"%1\" is not another USB logger").arg(otherKey);
        return false;
    }
    const bool wasPlugged = logger->isPlugged();
    const bool wasOtherPlugged = other->isPlugged();
    logger->pullOut();
    other->pullOut();
    const int plug = logger->plug();
    logger->setPlug(other->plug());
    other->setPlug(plug);
    if ((!wasPlugged || logger->plugIn()) && (!wasOtherPlugged || other->plugIn()))
        return true;
    *error = QStringLiteral("cannot make a serial port");
    return false;
}

UsbTree &Fleet::usbTree()
{
    if (!m_usbTree)
        m_usbTree = std::make_unique<UsbTree>();
    return *m_usbTree;
}

QByteArray Fleet::report() const
{
    QByteArray report;
    for (const auto &logger : m_loggers)
        report += logger->key().toLatin1() + '\t' + logger->kindText().toLatin1() + '\t' +
                  QByteArray::number(logger->served()) + '\n';
    return report;
}

} // namespace loggersim
