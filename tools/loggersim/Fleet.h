#pragma once

#include "loggersim/DiscoveryResponder.h"
#include "loggersim/UsbTree.h"

#include <QObject>
#include <memory>
#include <vector>

namespace loggersim {

class NetworkLogger;
class SerialLogger;
class SimLogger;
struct Fault;

/// All loggers of one simulator. They are numbered from 1 in the order in which they were added.
class Fleet : public QObject
{
    Q_OBJECT

public:
    /// @p seed makes keys and curves; fleets with different seeds have no key in common.
    explicit Fleet(quint16 seed = 1, QObject *parent = nullptr);
    ~Fleet() override;

    // Null, and the reason in @p error, when there is no port, address or terminal for it.
    NetworkLogger *addNetworkLogger(const QHostAddress &address, quint16 port, QString *error);
    SerialLogger *addUsbLogger(QString *error);
    /// Answers searches for the network loggers, present and later ones.
    bool startDiscovery(const QHostAddress &address, quint16 port, QString *error);
    /// 0 when searches are not answered.
    quint16 discoveryPort() const;

    QList<SimLogger *> loggers() const;
    /// By key, or else by number; null and the reason in @p error when there is none.
    SimLogger *find(const QString &keyOrNumber, QString *error) const;
    /// @p fault as parseFault() reads it. False, and the reason in @p error, when this logger cannot have it.
    bool setFault(const QString &keyOrNumber, const QString &fault, QString *error);

    /// Made when it is first asked for.
    UsbTree &usbTree();
    /// One line a logger: key, kind and readings served, separated by tabs.
    QByteArray report() const;

private:
    bool setUsbFault(SerialLogger *logger, const Fault &fault, QString *error);
    bool swap(SerialLogger *logger, const QString &other, QString *error);

    const quint16 m_seed;
    std::unique_ptr<UsbTree> m_usbTree;
    std::vector<std::unique_ptr<SimLogger>> m_loggers;
    std::unique_ptr<DiscoveryResponder> m_discovery;
};

} // namespace loggersim
