#include "project/DeviceList.h"

#include "device/ChannelUnit.h"
#include "device/DeviceKey.h"
#include "json/QJsonDocument.h"
#include "json/QJsonValueRef.h"
#include "json/Reader.h"
#include "json/Writer.h"

#include <cmath>

namespace {

const QString devicesKey = QStringLiteral("devices");

namespace key {
const QString name = QStringLiteral("DeviceName");
const QString ch1Name = QStringLiteral("Ch1Name");
const QString ch2Name = QStringLiteral("Ch2Name");
const QString number = QStringLiteral("DeviceNumber");
const QString type = QStringLiteral("DeviceType");
const QString interface = QStringLiteral("DeviceInterface");
const QString port = QStringLiteral("DevicePort");
const QString ch1Unit = QStringLiteral("ch1_unit");
const QString ch1Min = QStringLiteral("ch1_min");
const QString ch1Max = QStringLiteral("ch1_max");
const QString ch1Custom = QStringLiteral("ch1_custom");
const QString ch2Unit = QStringLiteral("ch2_unit");
const QString ch2Min = QStringLiteral("ch2_min");
const QString ch2Max = QStringLiteral("ch2_max");
const QString ch2Custom = QStringLiteral("ch2_custom");
const QString buzzerAlarm = QStringLiteral("buzzerAlarm");
const QString dashboard = QStringLiteral("DashboardNumber");
} // namespace key

constexpr int longestShownName = 40;

QString limitText(float limit)
{
    return QString::number(std::isfinite(limit) ? static_cast<double>(limit) : 0.0, 'f', 2);
}

float limitOf(const json::QJsonValue &value)
{
    bool isNumber = false;
    const float limit = value.toString().toFloat(&isNumber);
    return isNumber && std::isfinite(limit) ? limit : 0;
}

int unitOf(const json::QJsonValue &value)
{
    return channelUnitFromCode(value.toString().toInt());
}

quint16 portOf(const json::QJsonValue &value)
{
    bool isPort = false;
    const quint16 port = value.toString().toUShort(&isPort);
    return isPort ? port : defaultDevicePort;
}

json::QJsonObject encode(const DeviceEntry &entry)
{
    return json::QJsonObject{
        {key::name, entry.name},
        {key::ch1Name, entry.ch1Name},
        {key::ch2Name, entry.ch2Name},
        {key::number, entry.serialNumber},
        {key::type, linkKind(entry.interfaceKind).word},
        {key::interface, entry.address},
        {key::port, QString::number(entry.port)},
        {key::ch1Unit, QString::number(entry.ch1Unit)},
        {key::ch1Min, limitText(entry.range.min1)},
        {key::ch1Max, limitText(entry.range.max1)},
        {key::ch1Custom, entry.ch1CustomUnit},
        {key::ch2Unit, QString::number(entry.ch2Unit)},
        {key::ch2Min, limitText(entry.range.min2)},
        {key::ch2Max, limitText(entry.range.max2)},
        {key::ch2Custom, entry.ch2CustomUnit},
        {key::buzzerAlarm, entry.buzzerAlarm},
        {key::dashboard, entry.dashboardNumber},
    };
}

DeviceEntry decode(const json::QJsonObject &device)
{
    DeviceEntry entry;
    entry.name = device[key::name].toString();
    entry.ch1Name = device[key::ch1Name].toString();
    entry.ch2Name = device[key::ch2Name].toString();
    entry.serialNumber = device[key::number].toString();
    entry.interfaceKind = linkKindOfWord(device[key::type].toString()).number;
    entry.address = device[key::interface].toString();
    entry.port = portOf(device[key::port]);
    entry.ch1Unit = unitOf(device[key::ch1Unit]);
    entry.ch2Unit = unitOf(device[key::ch2Unit]);
    entry.range = {limitOf(device[key::ch1Min]), limitOf(device[key::ch1Max]), limitOf(device[key::ch2Min]),
                   limitOf(device[key::ch2Max])};
    entry.ch1CustomUnit = device[key::ch1Custom].toString();
    entry.ch2CustomUnit = device[key::ch2Custom].toString();
    if (device[key::buzzerAlarm].kind() == json::Kind::String)
        entry.buzzerAlarm = device[key::buzzerAlarm].toString();
    entry.dashboardNumber = device[key::dashboard].toInt();
    return entry;
}

bool isDevice(const json::QJsonObject &element)
{
    return !element[key::type].isNull();
}

QString keyProblem(const json::QJsonObject &device)
{
    return deviceKeyProblem(device[key::number].toString());
}

/// The devices of a list that are left out for their key.
QList<json::QJsonObject> refusedElements(const QByteArray &text)
{
    QList<json::QJsonObject> refused;
    const json::QJsonArray list = json::QJsonDocument(json::parse(text)).object()[devicesKey].toArray();
    for (const json::QJsonValue &element : list) {
        const json::QJsonObject device = element.toObject();
        if (isDevice(device) && !keyProblem(device).isEmpty())
            refused << device;
    }
    return refused;
}

} // namespace

QByteArray encodeDeviceList(const QList<DeviceEntry> &devices, const QByteArray &before)
{
    json::QJsonArray list;
    for (const DeviceEntry &entry : devices)
        list.append(encode(entry));
    const QList<json::QJsonObject> refused = refusedElements(before);
    for (const json::QJsonObject &device : refused)
        list.append(device);
    return json::serialise(json::QJsonObject{{devicesKey, list}}).toUtf8();
}

std::optional<QList<DeviceEntry>> decodeDeviceList(const QByteArray &text)
{
    const json::QJsonDocument document(json::parse(text));
    if (document.isNull())
        return std::nullopt;
    QList<DeviceEntry> devices;
    const json::QJsonArray list = document.object()[devicesKey].toArray();
    for (const json::QJsonValue &element : list) {
        const json::QJsonObject device = element.toObject();
        if (isDevice(device) && keyProblem(device).isEmpty())
            devices << decode(device);
    }
    return devices;
}

QStringList refusedDevices(const QByteArray &text)
{
    QStringList sentences;
    const QList<json::QJsonObject> refused = refusedElements(text);
    for (const json::QJsonObject &device : refused)
        sentences << QStringLiteral("The device \"%1\" is left out: its number %2.")
                         .arg(device[key::name].toString().left(longestShownName), keyProblem(device));
    return sentences;
}
