#include "device/LinkKind.h"

#include "device/SerialDevice.h"
#include "device/TelnetDevice.h"

#include <algorithm>
#include <array>

namespace {

template <typename Link>
std::unique_ptr<AbstractDevice> make(LoggerConversation *conversation)
{
    auto link = std::make_unique<Link>();
    link->setConversation(conversation);
    return link;
}

const std::array<LinkKind, 3> &linkKinds()
{
    static const std::array<LinkKind, 3> kinds = [] {
        LinkKind none;
        none.number = NoInterface;
        none.word = QStringLiteral("TELNET");
        none.makeLink = make<TelnetDevice>;

        LinkKind usb;
        usb.number = UsbInterface;
        usb.word = QStringLiteral("SERIAL");
        usb.makeLink = make<SerialDevice>;
        usb.isPolled = true;
        usb.isPluggedIn = true;
        usb.tellsLoss = true;
        usb.missedRepliesOfSeconds = 5;
        usb.missedReplies = 2;

        LinkKind network;
        network.number = NetworkInterface;
        network.word = QStringLiteral("TELNET");
        network.makeLink = make<TelnetDevice>;
        network.isPolled = true;
        network.hasTcpPort = true;
        network.takesAlarmSettings = true;
        network.missedRepliesOfSeconds = 5;
        network.missedReplies = 2;

        return std::array<LinkKind, 3>{none, usb, network};
    }();
    return kinds;
}

} // namespace

const LinkKind &linkKind(int number)
{
    const auto found = std::find_if(linkKinds().begin(), linkKinds().end(),
                                    [number](const LinkKind &kind) { return kind.number == number; });
    return found == linkKinds().end() ? linkKinds().front() : *found;
}

const LinkKind &linkKindOfWord(const QString &word)
{
    const auto found = std::find_if(linkKinds().begin(), linkKinds().end(),
                                    [&word](const LinkKind &kind) { return kind.isPolled && kind.word == word; });
    return found == linkKinds().end() ? linkKind(NetworkInterface) : *found;
}
