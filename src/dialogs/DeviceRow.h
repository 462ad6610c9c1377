#pragma once

#include <QList>
#include <QString>

class ConfiguredDevice;
class QListWidget;
class QListWidgetItem;
struct AvailDevice;

// The rows of the device manager's lists. A row carries the key of its device, by which devices are looked up.

/// Keys are typed by hand in either case.
bool isSameKey(const QString &a, const QString &b);

/// The rows are not in a list yet; the list they are put into owns them.
QListWidgetItem *makeFoundRow(const AvailDevice &device);
QListWidgetItem *makeConfiguredRow(const ConfiguredDevice &device);

/// Lists what the search has found. Each logger's answer does so anew while the operator works with the list: rows that
/// stay keep their selection, the cursor and their place in the window. The list scrolls by rows.
void showFoundRows(const QList<AvailDevice> &devices, QListWidget *list);

QString keyOf(const QListWidgetItem &row);
/// Whether the row shows a logger as the search has found it.
bool isFoundRow(const QListWidgetItem &row);
/// The text before the address, without blanks.
QString nameInRow(const QListWidgetItem &row);

/// Null when there is none.
QListWidgetItem *rowOfKey(const QListWidget &list, const QString &key);
/// From top to bottom.
QList<QListWidgetItem *> selectedRows(const QListWidget &list);
void moveRow(QListWidgetItem *row, QListWidget *target);
