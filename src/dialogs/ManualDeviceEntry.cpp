#include "dialogs/ManualDeviceEntry.h"

#include "device/DeviceKey.h"

#include <QRegularExpression>

namespace {

using Field = EntryRefusal::Field;

EntryRefusal missing(Field field, const QString &text)
{
    return {field, QStringLiteral("INFORMATION"), text};
}

bool looksLikeIpAddress(const QString &text)
{
    static const QRegularExpression pattern(
        QRegularExpression::anchoredPattern(QStringLiteral("(\\d{1,3}.\\d{1,3}.\\d{1,3}.\\d{1,3})")));
    return pattern.match(text).hasMatch();
}

} // namespace

std::optional<EntryRefusal> refusalOf(const ManualDeviceEntry &entry)
{
    if (entry.name.isEmpty())
        return missing(Field::Name, QStringLiteral("Enter the Device Name."));
    if (entry.key.isEmpty())
        return missing(Field::Key, QStringLiteral("Enter the Mac Address."));
    if (const QString problem = deviceKeyProblem(entry.key); !problem.isEmpty())
        return EntryRefusal{Field::Key, QStringLiteral("ERROR"), QStringLiteral("The Mac Address %1.").arg(problem)};
    if (entry.address.isEmpty())
        return missing(Field::Address, QStringLiteral("Enter the IP Address."));
    if (entry.port == 0)
        return missing(Field::Port, QStringLiteral("Enter the port number."));
    if (!looksLikeIpAddress(entry.address))
        return EntryRefusal{Field::Address, QStringLiteral("ERROR"), QStringLiteral("IP Address is not valid.")};
    return {};
}
