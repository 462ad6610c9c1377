#pragma once

#include "chart/Axis.h"
#include "chart/DateTicks.h"
#include "chart/Scale.h"
#include "chart/TextBlock.h"

#include <QRectF>
#include <QString>
#include <optional>
#include <vector>

class QPainter;

namespace chart {

struct PlotArea;

/// The x axis: moments as Unix seconds, shown as local time. Without a scale it is a bare line.
class DateAxis : public Axis
{
public:
    /// A range that is empty or the wrong way round takes the scale away.
    void setScale(double from, double to);
    const std::optional<Range> &range() const;
    /// The least distances of ticks in pixels.
    void setTickDensity(int major, int minor);
    /// As in QDateTime::toString().
    void setLabelFormat(const QString &format);

    DateTicks ticks(const PlotArea &plot) const;

    /// The text of a major tick and where it stands.
    struct Label
    {
        TextBlock text;
        QRectF place;
    };
    /// Labels that would collide or leave the picture of that width are left out.
    std::vector<Label> labels(const PlotArea &plot, const Scale &scale, const DateTicks &ticks,
                              double pictureWidth) const;

    void draw(QPainter &painter, const PlotArea &plot, const Scale &scale, const DateTicks &ticks) const;

private:
    std::optional<Range> m_range;
    int m_majorSpacing = 75;
    int m_minorSpacing = 15;
    QString m_format = QStringLiteral("hh:mm:ss");
};

} // namespace chart
