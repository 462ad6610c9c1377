#pragma once

#include <QString>
#include <memory>

class AbstractDevice;
class LoggerConversation;

/// How a device is reached; the numbers are those of project files and links.
enum InterfaceKind { NoInterface = 0, UsbInterface = 1, NetworkInterface = 2 };

/// What the way in which a device is reached means for all that knows no windows; what it means for windows stands in
/// LinkKindView. A further kind is a row in each of the two tables.
struct LinkKind
{
    InterfaceKind number = NoInterface;
    QString word; ///< in project files
    /// Never null within the table; the link tells the conversation, which it does not own, what it sends and hears.
    std::unique_ptr<AbstractDevice> (*makeLink)(LoggerConversation *conversation) = nullptr;
    bool isPolled = false;
    /// Found by looking at what is plugged in; the name of its port may be another logger's after the next look.
    bool isPluggedIn = false;
    /// Its address goes with a TCP port.
    bool hasTcpPort = false;
    /// The link itself tells when its logger is lost; of others only missed replies tell.
    bool tellsLoss = false;
    /// The alarm settings are written into the logger, which then sounds by itself.
    bool takesAlarmSettings = false;
    /// Replies in a row that a logger may miss, up to an interval of one second and beyond.
    int missedRepliesOfSeconds = 0;
    int missedReplies = 0;
};

/// That of NoInterface for every number that is none.
const LinkKind &linkKind(int number);
/// That of NetworkInterface for every word that is none.
const LinkKind &linkKindOfWord(const QString &word);
