#include "dialogs/DeviceRow.h"

#include "device/ConfiguredDevice.h"

#include <QListWidget>
#include <algorithm>

namespace {

constexpr int keyRole = Qt::ToolTipRole;
constexpr int foundRole = Qt::UserRole;

QListWidgetItem *makeRow(const QString &name, const QString &address, int interfaceKind, const QString &key)
{
    const bool isUsb = interfaceKind == UsbInterface;
    const QIcon icon(isUsb ? QStringLiteral(":/img/icon_usb.png") : QStringLiteral(":/img/icon_lan.png"));
    auto *row = new QListWidgetItem(icon, name + QStringLiteral("\t[") + address + QLatin1Char(']'));
    row->setData(keyRole, key);
    return row;
}

QString withPort(const QString &address, quint16 port)
{
    return address + QLatin1Char(':') + QString::number(port);
}

QString displayName(const ConfiguredDevice &device)
{
    return device.deviceName().isEmpty() ? device.serialNumber() : device.deviceName();
}

} // namespace

bool isSameKey(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

QListWidgetItem *makeFoundRow(const AvailDevice &device)
{
    const bool isNetwork = device.kind == NetworkInterface;
    const QString address = isNetwork ? withPort(device.address, device.port) : device.address;
    QListWidgetItem *row = makeRow(device.key, address, device.kind, device.key);
    row->setData(foundRole, true);
    return row;
}

QListWidgetItem *makeConfiguredRow(const ConfiguredDevice &device)
{
    const bool isNetwork = device.interfaceKind() == NetworkInterface;
    const QString address = isNetwork ? withPort(device.address(), device.port()) : device.address();
    return makeRow(displayName(device), address, device.interfaceKind(), device.serialNumber());
}

QListWidgetItem *makeManualRow(const ConfiguredDevice &device)
{
    return makeRow(displayName(device), withPort(device.address(), device.port()), NetworkInterface,
                   device.serialNumber());
}

QString keyOf(const QListWidgetItem &row)
{
    return row.data(keyRole).toString();
}

bool isFoundRow(const QListWidgetItem &row)
{
    return row.data(foundRole).toBool();
}

QString nameInRow(const QListWidgetItem &row)
{
    QString name = row.text().section(QLatin1Char('['), 0, 0);
    return name.remove(QLatin1Char(' ')).remove(QLatin1Char('\t'));
}

QListWidgetItem *rowOfKey(const QListWidget &list, const QString &key)
{
    for (int i = 0; i < list.count(); ++i) {
        if (isSameKey(keyOf(*list.item(i)), key))
            return list.item(i);
    }
    return nullptr;
}

QList<QListWidgetItem *> selectedRows(const QListWidget &list)
{
    QList<QListWidgetItem *> rows = list.selectedItems();
    std::sort(rows.begin(), rows.end(),
              [&list](const QListWidgetItem *a, const QListWidgetItem *b) { return list.row(a) < list.row(b); });
    return rows;
}

void moveRow(QListWidgetItem *row, QListWidget *target)
{
    QListWidget *source = row->listWidget();
    source->takeItem(source->row(row));
    target->addItem(row);
}
