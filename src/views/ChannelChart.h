#pragma once

#include "device/DeviceViews.h"

#include <QColor>
#include <QSize>
#include <QString>
#include <memory>

namespace chart {
class XYChart;
}

/// How a channel's line appears.
struct ChannelLine
{
    QString name;
    QColor colour;
};

/// The chart of one channel's history for a label of that size: as many data intervals as the history has samples,
/// ending with the newest one. A sample more than one and a half of the intervals in force at it after its predecessor
/// is not joined to that: between them is time without readings. Without a newest time, without room, or for an
/// interval that is none, it is an empty plot.
std::unique_ptr<chart::XYChart> channelChart(const QSize &label, const History &times, const History &intervals,
                                             const History &values, const ChannelLine &line, qint32 intervalMs);

/// What the caption of such a chart says of the time shown.
QString channelSpanText(qint32 intervalMs);
