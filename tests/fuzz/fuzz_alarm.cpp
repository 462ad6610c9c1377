#include "FuzzGround.h"
#include "FuzzInput.h"

#include "device/AlarmExchange.h"
#include "device/WireText.h"

#include <QRegularExpression>
#include <QStringList>

#include <cmath>
#include <cstring>

namespace {

const QStringList names{QStringLiteral("ATBMIN1"), QStringLiteral("ATBMAX1"), QStringLiteral("ATBMIN2"),
                        QStringLiteral("ATBMAX2"), QStringLiteral("ATBAL"),   QStringLiteral("ATBSET")};

float limit(FuzzInput &input)
{
    const quint32 bits = input.number(4);
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return std::isfinite(value) ? value : 0; // as files and editors give them
}

void checkCommand(const AlarmExchange &exchange, const AlarmSettings &settings, int acknowledged)
{
    const QString command = exchange.command(settings);
    require(exchange.isRunning() != command.isEmpty(), "a command is due while the exchange runs");
    if (!exchange.isRunning())
        return;
    require(command.startsWith(names.at(acknowledged)), "the commands come in their order");
    require(command.endsWith(QLatin1String("\r\n")), "a command ends its line");
    require(command.count(QLatin1Char('\n')) == 1 && command.count(QLatin1Char('\r')) == 1, "a command is one line");
    require(exchange.isAtFirstCommand() == (acknowledged == 0), "the first command is the first");
    require(exchange.isAtRule() == (acknowledged == 4), "the rule is the fifth");
    if (acknowledged < 4) {
        static const QRegularExpression number(QStringLiteral("^ATBM(IN|AX)[12] -?[0-9]+\\.[0-9]{2}\r\n$"));
        require(number.match(command).hasMatch(), "a limit is a number with two decimals");
    }
}

} // namespace

/// Four limits, a rule, and then: whatever the logger answers and the operator does.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    AlarmSettings settings;
    settings.range = {limit(input), limit(input), limit(input), limit(input)};
    settings.buzzerRule = QString::fromUtf8(input.bytes(input.byte() % 32));
    AlarmExchange exchange;
    int acknowledged = 0;
    int started = 0;
    while (!input.atEnd()) {
        const int step = input.byte();
        if (step % 8 == 0) {
            exchange.start();
            acknowledged = 0;
            ++started;
        } else if (step % 8 == 1) {
            exchange.stop();
        } else if (exchange.isRunning()) {
            const QString reply = step % 8 < 5 ? QStringLiteral("OK") : wireText(input.bytes(step / 8));
            const AlarmExchange::Progress progress = exchange.takeReply(reply);
            const bool isTaken = reply == QLatin1String("OK");
            acknowledged += isTaken ? 1 : 0;
            require((progress == AlarmExchange::Progress::Refused) != isTaken, "nothing but OK is an acknowledgement");
            require((progress == AlarmExchange::Progress::Done) == (isTaken && acknowledged == names.size()),
                    "six acknowledgements make an exchange");
            require(exchange.isRunning() == (progress == AlarmExchange::Progress::NextCommand), "or it is over");
        }
        require(exchange.number() == started, "exchanges are counted");
        checkCommand(exchange, settings, acknowledged);
    }
    return 0;
}
