#include "UsbLoggerCases.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

namespace {

// Types of registry values and of device properties.
constexpr std::uint32_t registryText = 1;
constexpr std::uint32_t registryTextList = 7;
constexpr std::uint32_t devicePropertyText = 18;

QJsonArray readTable()
{
    QFile file(QStringLiteral(USB_LOGGER_CASES));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", USB_LOGGER_CASES);
    QJsonParseError error;
    const QJsonDocument table = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error != QJsonParseError::NoError)
        qFatal("%s: %s at byte %d", USB_LOGGER_CASES, qPrintable(error.errorString()), error.offset);
    return table.object().value(QLatin1String("cases")).toArray();
}

std::vector<std::uint8_t> utf16Bytes(const QString &text)
{
    std::vector<std::uint8_t> bytes;
    for (const QChar c : text) {
        bytes.push_back(static_cast<std::uint8_t>(c.unicode() & 0xff));
        bytes.push_back(static_cast<std::uint8_t>(c.unicode() >> 8));
    }
    return bytes;
}

RawProperty rawProperty(const QJsonObject &value)
{
    const auto type = static_cast<std::uint32_t>(value.value(QLatin1String("type")).toInt());
    if (value.contains(QLatin1String("text")))
        return {type, utf16Bytes(value.value(QLatin1String("text")).toString())};
    const QByteArray bytes = QByteArray::fromHex(value.value(QLatin1String("hex")).toString().toLatin1());
    return {type, {bytes.begin(), bytes.end()}};
}

RawProperty textList(const QJsonArray &items)
{
    QString text;
    for (const QJsonValue &item : items)
        text += item.toString() + QChar(u'\0');
    return {registryTextList, utf16Bytes(text + QChar(u'\0'))};
}

std::optional<RawProperty> property(const QJsonValue &value, std::uint32_t textType)
{
    if (value.isObject())
        return rawProperty(value.toObject());
    if (value.isArray())
        return textList(value.toArray());
    if (value.isString())
        return RawProperty{textType, utf16Bytes(value.toString() + QChar(u'\0'))};
    return std::nullopt;
}

/// What Windows tells of a device unless its case says otherwise.
QJsonObject windowsProperties(const QJsonObject &device)
{
    const QString id =
        QStringLiteral("USB\\VID_%1&PID_%2")
            .arg(device.value(QLatin1String("vendor")).toString(), device.value(QLatin1String("product")).toString());
    const QJsonValue port = device.value(QLatin1String("port"));
    QJsonObject properties{
        {QStringLiteral("hardwareIds"), QJsonArray{id + QLatin1String("&REV_0100"), id}},
        {QStringLiteral("friendlyName"), port.isUndefined()
                                             ? QStringLiteral("USB Composite Device")
                                             : QStringLiteral("USB Communications Port (COM%1)").arg(port.toInt())},
        {QStringLiteral("location"), device.value(QLatin1String("description"))},
    };
    const QJsonObject own = device.value(QLatin1String("windows")).toObject();
    for (auto it = own.begin(); it != own.end(); ++it)
        properties.insert(it.key(), it.value());
    return properties;
}

UsbDeviceCase deviceCase(const QJsonObject &device)
{
    UsbDeviceCase result;
    result.vendorId = device.value(QLatin1String("vendor")).toString().toUtf8();
    result.productId = device.value(QLatin1String("product")).toString().toUtf8();
    const QJsonValue description = device.value(QLatin1String("description"));
    if (!description.isUndefined())
        result.product = QByteArray("").append(description.toString().toUtf8()); // empty, but not null
    const QJsonValue port = device.value(QLatin1String("port"));
    if (!port.isUndefined())
        result.ttyName = "ttyACM" + QByteArray::number(port.toInt());

    const QJsonObject properties = windowsProperties(device);
    result.hardwareIds = property(properties.value(QLatin1String("hardwareIds")), registryText);
    result.friendlyName = property(properties.value(QLatin1String("friendlyName")), registryText);
    result.location = property(properties.value(QLatin1String("location")), registryText);
    result.busReported = property(properties.value(QLatin1String("busReported")), devicePropertyText);
    return result;
}

UsbLogger foundLogger(const QJsonObject &logger, UsbSystem system)
{
    const QJsonValue port = logger.value(QLatin1String("port"));
    const QString prefix = system == UsbSystem::Linux ? QStringLiteral("ttyACM") : QStringLiteral("COM");
    return {port.isString() ? port.toString() : prefix + QString::number(port.toInt()),
            logger.value(QLatin1String("serial")).toString()};
}

UsbLoggerCase loggerCase(const QJsonObject &row, UsbSystem system)
{
    UsbLoggerCase result;
    result.name = row.value(QLatin1String("name")).toString();
    for (const QJsonValue &device : row.value(QLatin1String("devices")).toArray())
        result.devices.append(deviceCase(device.toObject()));
    for (const QJsonValue &logger : row.value(QLatin1String("found")).toArray())
        result.found.append(foundLogger(logger.toObject(), system));
    return result;
}

} // namespace

QList<UsbLoggerCase> usbLoggerCases(UsbSystem system)
{
    const QString name = system == UsbSystem::Linux ? QStringLiteral("linux") : QStringLiteral("windows");
    QList<UsbLoggerCase> cases;
    for (const QJsonValue &row : readTable()) {
        if (row[QLatin1String("only")].toString(name) == name)
            cases.append(loggerCase(row.toObject(), system));
    }
    return cases;
}

void addUsbLoggerCaseRows(UsbSystem system)
{
    QTest::addColumn<int>("number");
    const QList<UsbLoggerCase> cases = usbLoggerCases(system);
    for (int i = 0; i < cases.size(); ++i)
        QTest::newRow(qPrintable(cases.at(i).name)) << i;
}
