#pragma once

#include <QHostAddress>
#include <QList>
#include <QPair>
#include <QStringList>
#include <optional>

namespace loggersim {

/// What one run of the simulator is to do.
struct Options
{
    int network = 0;
    int usb = 0;
    quint16 seed = 1;
    int steady = 1; ///< how often each reading comes in a row

    QHostAddress address; ///< of the first network logger
    bool ownAddresses = true;
    quint16 port = 0; ///< of the first network logger; 0: the system chooses each

    std::optional<QHostAddress> discoveryAddress;
    quint16 discoveryPort = 0;

    QList<QPair<QString, QString>> faults; ///< key or number of a logger, and its fault

    QString controlPath;
    bool interactive = false;
    QString reportFile;
    QString servedFile;
    QString projectFile;
    int intervalMs = 0;
    QString settingsFolder;
    bool keepAlive = false;

    QStringList program; ///< with its arguments; empty: none is run

    QHostAddress addressOf(int networkLogger) const;
    quint16 portOf(int networkLogger) const;
};

/// What the command line comes to: exactly one of the three is set.
struct CommandLine
{
    std::optional<Options> options;
    QString help;  ///< was asked for
    QString error; ///< what is wrong with it
};

/// @p arguments with the program's own name in front.
CommandLine readCommandLine(const QStringList &arguments);

} // namespace loggersim
