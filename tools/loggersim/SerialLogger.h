#pragma once

#include "loggersim/PseudoTerminal.h"
#include "loggersim/SimLogger.h"

#include <QTimer>

namespace loggersim {

class UsbTree;

/// A USB logger: a serial line that is listed in a UsbTree while it is plugged in.
class SerialLogger : public SimLogger
{
    Q_OBJECT

public:
    /// @p tree is not owned and must outlive the logger. It begins pulled out, with @p plug as its place.
    SerialLogger(const QString &key, const Climate &climate, quint32 seed, UsbTree *tree, int plug,
                 QObject *parent = nullptr);
    ~SerialLogger() override;

    /// Empty unless plugged in.
    QString address() const override;
    quint16 port() const override { return 0; }
    /// 1 while plugged in: a serial line does not tell who has it open.
    int connectionCount() const override { return isPlugged() ? 1 : 0; }

    bool isPlugged() const;
    /// Where it is listed when plugged in next.
    int plug() const { return m_plug; }
    void setPlug(int plug) { m_plug = plug; }

    /// False, with errorString(), when the system has no terminal left.
    bool plugIn();
    void pullOut();
    /// Pulls it out now and plugs it in again later.
    void replug(int pauseMs);
    QString errorString() const;

private:
    UsbTree *m_tree;
    int m_plug;
    PseudoTerminal m_line;
    QTimer m_replug;
};

} // namespace loggersim
