#include "FuzzGround.h"

#include "device/Discovery.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray datagram(reinterpret_cast<const char *>(data), int(size));
    const std::string text(datagram.constData(), qstrnlen(datagram.constData(), uint(size)));
    require(isDiscoveryReply(datagram) == (text.find("OSTRIVANE") != std::string::npos),
            "a logger's mark counts before the first zero byte only");

    const std::optional<DiscoveryReply> reply = decodeDiscoveryReply(datagram);
    require(reply.has_value() == (size >= 28), "a reply is decoded when it is complete");
    if (!reply)
        return 0;
    const auto at = [data](int offset) {
        return quint32(data[offset]);
    };
    require(reply->ipAddress == QStringLiteral("%1.%2.%3.%4").arg(at(12)).arg(at(13)).arg(at(14)).arg(at(15)),
            "the address in dots");
    QString mac;
    for (int i = 16; i < 22; ++i)
        mac += QStringLiteral("%1").arg(at(i), 2, 16, QLatin1Char('0')).toUpper();
    require(reply->macAddress == mac, "the hardware's address in upper-case digits");
    require(reply->usesDhcp == at(23), "the flag as it was sent");
    require(reply->announcedPort == (at(24) | at(25) << 8 | at(26) << 16 | at(27) << 24), "the port as it was sent");
    return 0;
}
