#pragma once

#include <QColor>
#include <QFont>

namespace chart {

/// What the axes have in common.
class Axis
{
public:
    /// In pixels; the middle of the line is the edge of the plot area.
    void setWidth(int pixels) { m_width = pixels; }
    void setColours(const QColor &line, const QColor &labels)
    {
        m_lineColour = line;
        m_labelColour = labels;
    }
    void setFont(const QFont &font) { m_font = font; }

protected:
    Axis() = default;
    ~Axis() = default;

    /// How much of the line lies before its middle.
    int widthBefore() const { return m_width / 2; }

    int m_width = 1;
    QColor m_lineColour = Qt::black;
    QColor m_labelColour = Qt::black;
    QFont m_font;
};

} // namespace chart
