#pragma once

#include <QString>
#include <optional>

/// What the operator typed to add a network logger by hand.
struct ManualDeviceEntry
{
    QString name;
    QString key;      ///< the MAC address' digits in the case typed; fewer than twelve when typed in part
    QString address;  ///< empty when one of its numbers is none
    quint16 port = 0; ///< 0 when it is no number
};

/// Why an entry cannot be used, as a message for the operator, and what of it has to be typed anew.
struct EntryRefusal
{
    enum class Field { Name, Key, Address, Port };

    Field field;
    QString title;
    QString text;
};

/// The first objection to @p entry; nothing when it can be tried.
std::optional<EntryRefusal> refusalOf(const ManualDeviceEntry &entry);
