#include "loggersim/Options.h"
#include "loggersim/ControlCommands.h"
#include "loggersim/Fault.h"

#include "device/DataInterval.h"
#include "device/Discovery.h"

#include <QCommandLineParser>

namespace loggersim {

namespace {

constexpr int networkMax = 10000;
constexpr int usbMax = 256;
constexpr int steadyMax = 24 * 3600;
constexpr int dayMs = 24 * 3600 * 1000;

/// The options of the simulator and their values; the first value that is none ends the reading.
class OptionReader
{
public:
    OptionReader();
    CommandLine read(const QStringList &arguments);

private:
    void declare(const char *name, const char *value, const char *help);
    QString value(const char *name) const { return m_parser.value(QLatin1String(name)); }
    bool isSet(const char *name) const { return m_parser.isSet(QLatin1String(name)); }
    int number(const char *name, int lowest, int highest, int usual);
    QHostAddress hostAddress(const char *name);
    void readNetwork(Options &options);
    void readFaults(Options &options);
    void readFiles(Options &options);
    void fail(const QString &reason);
    QString help() const;

    QCommandLineParser m_parser;
    QString m_error;
};

OptionReader::OptionReader()
{
    m_parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    m_parser.setApplicationDescription(
        QStringLiteral("Software loggers for the station: they answer polls, take alarm limits, answer searches, go "
                       "wrong on demand and count what they served."));
    declare("help", nullptr, "Shows this text.");
    declare("network", "N", "Number of network loggers (0).");
    declare("addresses", "FIRST",
            "Each network logger has an address of its own, counting up from this one "
            "(127.0.1.1), all on the port of --port.");
    declare("address", "ADDRESS",
            "All network loggers share this address (\"any\": all of this machine), each on a "
            "port of its own, counting up from --port.");
    declare("port", "PORT",
            "Port of the (first) network logger; loggers usually have 23. 0: the system chooses a free "
            "one for each, and it is reported (0).");
    declare("discovery", "ADDRESS", "Answers the station's search on this address; \"any\" hears broadcasts.");
    declare("discovery-port", "PORT", "UDP port of the search (50000).");
    declare("usb", "N", "Number of USB loggers (0). PROGRAM sees them as /dev/ttyACM0 and so on.");
    declare("seed", "N", "Other keys and other readings, 0 to 65535 (1).");
    declare("steady", "N", "Each reading comes N times in a row, from every logger (1).");
    declare("fault", "LOGGER=FAULT[:ARGUMENT]",
            "Lets a logger, by key or number from 1 (network loggers first), do "
            "something wrong from the start. May be given more than once.");
    declare("control", "PATH", "Takes control lines on a local socket at this path.");
    declare("interactive", nullptr, "Takes control lines on the standard input.");
    declare("report", "FILE", "Writes, at the end, one line a logger: key, kind, readings served, separated by tabs.");
    declare("served", "FILE",
            "Writes every reading as it is served, one a line: key, values and the time of its poll in Unix "
            "milliseconds, separated by tabs.");
    declare("project", "FILE", "Writes a station project (.tpc) that fits the loggers, at most 64.");
    declare("interval", "MS", "Data interval of that project in milliseconds (1000).");
    declare("settings", "DIR",
            "Writes station settings below this folder that open the project and record by "
            "themselves. PROGRAM runs with them; others need XDG_CONFIG_HOME=DIR.");
    declare("keep-alive", nullptr, "Those settings keep network connections between polls.");
    m_parser.addPositionalArgument(
        QStringLiteral("-- PROGRAM"),
        QStringLiteral("Program to run with the USB loggers plugged in. The simulator ends "
                       "when it ends, with its exit code; without a program it runs until it "
                       "is terminated or told \"quit\"."),
        QStringLiteral("[-- PROGRAM [ARGUMENT...]]"));
}

void OptionReader::declare(const char *name, const char *value, const char *help)
{
    QStringList names{QLatin1String(name)};
    if (names.first() == QLatin1String("help"))
        names.prepend(QStringLiteral("h"));
    QCommandLineOption option(names, QLatin1String(help));
    if (value)
        option.setValueName(QLatin1String(value));
    m_parser.addOption(option);
}

void OptionReader::fail(const QString &reason)
{
    if (m_error.isEmpty())
        m_error = reason;
}

int OptionReader::number(const char *name, int lowest, int highest, int usual)
{
    if (!isSet(name))
        return usual;
    bool ok = false;
    const int number = value(name).toInt(&ok);
    if (!ok || number < lowest || number > highest)
        fail(QStringLiteral("--%1 takes a number from %2 to %3, not \"%4\"")
                 .arg(QLatin1String(name))
                 .arg(lowest)
                 .arg(highest)
                 .arg(value(name)));
    return number;
}

QHostAddress OptionReader::hostAddress(const char *name)
{
    if (value(name) == QLatin1String("any"))
        return QHostAddress(QHostAddress::AnyIPv4);
    const QHostAddress address(value(name));
    if (address.protocol() != QAbstractSocket::IPv4Protocol)
        fail(QStringLiteral("--%1 takes an IPv4 address, not \"%2\"").arg(QLatin1String(name), value(name)));
    return address;
}

void OptionReader::readNetwork(Options &options)
{
    options.network = number("network", 0, networkMax, 0);
    options.port = static_cast<quint16>(number("port", 0, 65535, 0));
    options.address = QHostAddress(QStringLiteral("127.0.1.1"));
    options.ownAddresses = !isSet("address");
    if (isSet("address") && isSet("addresses"))
        fail(QStringLiteral("--address and --addresses exclude each other"));
    if (isSet("address"))
        options.address = hostAddress("address");
    else if (isSet("addresses"))
        options.address = hostAddress("addresses");
    if (options.ownAddresses && options.address == QHostAddress(QHostAddress::AnyIPv4))
        fail(QStringLiteral("--addresses needs a first address to count from"));
    if (!options.ownAddresses && options.port + options.network - 1 > 65535)
        fail(QStringLiteral("there are not enough ports from %1 on").arg(options.port));
    if (isSet("discovery"))
        options.discoveryAddress = hostAddress("discovery");
    options.discoveryPort = static_cast<quint16>(number("discovery-port", 0, 65535, discoveryPort));
}

void OptionReader::readFaults(Options &options)
{
    const QStringList texts = m_parser.values(QStringLiteral("fault"));
    for (const QString &text : texts) {
        const int equals = text.indexOf(QLatin1Char('='));
        if (equals <= 0)
            fail(QStringLiteral("--fault takes LOGGER=FAULT, not \"%1\"").arg(text));
        QString error;
        if (!parseFault(text.mid(equals + 1), &error))
            fail(QStringLiteral("--fault %1: %2").arg(text, error));
        options.faults.append({text.left(equals), text.mid(equals + 1)});
    }
}

void OptionReader::readFiles(Options &options)
{
    options.controlPath = value("control");
    options.interactive = isSet("interactive");
    options.reportFile = value("report");
    options.servedFile = value("served");
    options.projectFile = value("project");
    options.intervalMs = number("interval", 1, dayMs, 1000);
    options.settingsFolder = value("settings");
    options.keepAlive = isSet("keep-alive");
    if (isSet("settings") && !isSet("project"))
        fail(QStringLiteral("--settings needs --project: the settings open that project"));
    if (isSet("keep-alive") && !isSet("settings"))
        fail(QStringLiteral("--keep-alive needs --settings"));
    if (isSet("interval") && !isSet("project"))
        fail(QStringLiteral("--interval needs --project"));
    for (const char *name : {"control", "report", "served", "project", "settings"}) {
        if (isSet(name) && value(name).isEmpty())
            fail(QStringLiteral("--%1 needs a path").arg(QLatin1String(name)));
    }
}

QString OptionReader::help() const
{
    return m_parser.helpText() + QStringLiteral("\nFaults:\n%1\nControl lines (KEY: a logger's key or number):\n%2")
                                     .arg(faultHelp(), ControlCommands::help());
}

CommandLine OptionReader::read(const QStringList &arguments)
{
    CommandLine line;
    if (!m_parser.parse(arguments)) {
        line.error = m_parser.errorText();
        return line;
    }
    if (isSet("help")) {
        line.help = help();
        return line;
    }
    Options options;
    readNetwork(options);
    options.usb = number("usb", 0, usbMax, 0);
    options.seed = static_cast<quint16>(number("seed", 0, 65535, 1));
    options.steady = number("steady", 1, steadyMax, 1);
    readFaults(options);
    readFiles(options);
    options.program = m_parser.positionalArguments();
    if (options.network + options.usb == 0)
        fail(QStringLiteral("there is nothing to simulate: give --network or --usb"));
    line.error = m_error;
    if (m_error.isEmpty())
        line.options = options;
    return line;
}

} // namespace

QHostAddress Options::addressOf(int networkLogger) const
{
    return ownAddresses ? QHostAddress(address.toIPv4Address() + static_cast<quint32>(networkLogger)) : address;
}

quint16 Options::portOf(int networkLogger) const
{
    return ownAddresses || port == 0 ? port : static_cast<quint16>(port + networkLogger);
}

CommandLine readCommandLine(const QStringList &arguments)
{
    return OptionReader().read(arguments);
}

} // namespace loggersim
