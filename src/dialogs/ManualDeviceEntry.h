#pragma once

#include <QString>
#include <optional>

/// What the operator typed to add a network logger by hand.
struct ManualDeviceEntry
{
    QString name;
    QString key; ///< the MAC address' digits in the case typed; fewer than twelve when typed in part
    QString address;
    quint16 port = 0;
};

/// Why an entry cannot be used, as a message for the operator.
struct EntryRefusal
{
    QString title;
    QString text;
};

/// The first objection to @p entry; nothing when it can be tried.
std::optional<EntryRefusal> refusalOf(const ManualDeviceEntry &entry);
