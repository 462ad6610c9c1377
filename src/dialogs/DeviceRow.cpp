#include "dialogs/DeviceRow.h"

#include "device/ConfiguredDevice.h"
#include "dialogs/LinkKindView.h"

#include <QListWidget>
#include <QScrollBar>
#include <QSet>
#include <algorithm>

namespace {

constexpr int keyRole = Qt::ToolTipRole;
constexpr int foundRole = Qt::UserRole;

QString textOf(const QString &name, const QString &address)
{
    return name + QStringLiteral("\t[") + address + QLatin1Char(']');
}

QListWidgetItem *makeRow(const QString &text, int interfaceKind, const QString &key)
{
    auto *row = new QListWidgetItem(QIcon(linkKindView(interfaceKind).picture), text);
    row->setData(keyRole, key);
    return row;
}

QString addressText(int interfaceKind, const QString &address, quint16 port)
{
    return linkKind(interfaceKind).hasTcpPort ? address + QLatin1Char(':') + QString::number(port) : address;
}

QString foundText(const AvailDevice &device)
{
    return textOf(device.key, addressText(device.kind, device.address, device.port));
}

QString displayName(const ConfiguredDevice &device)
{
    return device.deviceName().isEmpty() ? device.serialNumber() : device.deviceName();
}

void removeAllBut(const QList<AvailDevice> &devices, QListWidget *list)
{
    QSet<QString> keys;
    for (const AvailDevice &device : devices)
        keys.insert(device.key);
    for (int i = list->count() - 1; i >= 0; --i) {
        if (!keys.contains(keyOf(*list->item(i))))
            delete list->item(i);
    }
}

/// Puts the logger's row at @p index, made anew if there is none.
void placeFoundRow(const AvailDevice &device, int index, QListWidget *list)
{
    QListWidgetItem *there = list->item(index);
    QListWidgetItem *row = there && keyOf(*there) == device.key ? there : rowOfKey(*list, device.key);
    if (!row) {
        list->insertItem(index, makeFoundRow(device));
        return;
    }
    // One that comes back from a dashboard has its name there.
    row->setText(foundText(device));
    row->setData(foundRole, true);
    if (row == there)
        return;
    const bool isSelected = row->isSelected();
    list->insertItem(index, list->takeItem(list->row(row)));
    row->setSelected(isSelected);
}

} // namespace

bool isSameKey(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

QListWidgetItem *makeFoundRow(const AvailDevice &device)
{
    QListWidgetItem *row = makeRow(foundText(device), device.kind, device.key);
    row->setData(foundRole, true);
    return row;
}

QListWidgetItem *makeConfiguredRow(const ConfiguredDevice &device)
{
    const QString address = addressText(device.interfaceKind(), device.address(), device.port());
    return makeRow(textOf(displayName(device), address), device.interfaceKind(), device.serialNumber());
}

void showFoundRows(const QList<AvailDevice> &devices, QListWidget *list)
{
    const int topIndex = list->verticalScrollBar()->value();
    const QString topKey = topIndex > 0 ? keyOf(*list->item(topIndex)) : QString();
    removeAllBut(devices, list);
    for (int i = 0; i < devices.size(); ++i)
        placeFoundRow(devices.at(i), i, list);
    QListWidgetItem *topRow = topKey.isEmpty() ? nullptr : rowOfKey(*list, topKey);
    if (topRow && list->row(topRow) != topIndex)
        list->scrollToItem(topRow, QAbstractItemView::PositionAtTop);
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
