#pragma once

#include "journal/JournalEvent.h"
#include "project/DeviceEntry.h"

#include <QList>

/// What has to be told of a change from the devices of a project as they were to those that they are.
QList<JournalEvent> deviceChanges(const QList<DeviceEntry> &before, const QList<DeviceEntry> &after);

/// The limit as it was typed: the float that it is kept as has digits of its own.
double decimalLimit(float limit);
/// Both channels' limits and the rule, for people.
QString limitsText(const AlarmRange &range, const QString &buzzerRule);
