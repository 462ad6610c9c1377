#pragma once

#include <QList>
#include <QString>

constexpr int defaultDataIntervalMs = 10000;

/// The data interval of the whole program in milliseconds; set by the open project, read by links, devices and views.
extern qint32 dataIntervalMs;

/// The intervals a project can choose, in milliseconds, shortest first.
const QList<int> &selectableIntervals();

/// "1 sec" … "10 min" for a selectable interval, an empty text for any other.
QString intervalText(int ms);
