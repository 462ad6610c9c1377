#include "chart/LinePath.h"

#include "chart/NoValue.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace chart {

namespace {

/// Cuts a line to the part that lies within an area; false when there is none.
bool clip(QLineF &line, const QRectF &area)
{
    const std::array<std::pair<double, double>, 4> borders{{{-line.dx(), line.x1() - area.left()},
                                                            {line.dx(), area.right() - line.x1()},
                                                            {-line.dy(), line.y1() - area.top()},
                                                            {line.dy(), area.bottom() - line.y1()}}};
    double from = 0;
    double to = 1;
    for (const auto &[outwards, room] : borders) {
        if (outwards == 0 && room < 0)
            return false;
        if (outwards < 0)
            from = std::max(from, room / outwards);
        else if (outwards > 0)
            to = std::min(to, room / outwards);
    }
    if (from > to)
        return false;
    line = {line.pointAt(from), line.pointAt(to)};
    return true;
}

/// The points that fell into one column of pixels, in a row. Its borders are x values: of all the points but few come
/// to be drawn, and only those are worth a coordinate.
class Column
{
public:
    bool holds(double x) const { return x >= m_low && x < m_high; }

    void start(const Range &xValues)
    {
        m_low = xValues.low;
        m_high = xValues.high;
        m_count = 0;
    }
    /// Holds nothing from now on.
    void end() { start({0, 0}); }

    void add(double x, double value)
    {
        if (m_count < int(m_first.size()))
            m_first[size_t(m_count)] = {x, value};
        if (m_count == 0 || value < m_lowest.second) {
            m_lowest = {x, value};
            m_lowestIndex = m_count;
        }
        if (m_count == 0 || value > m_highest.second) {
            m_highest = {x, value};
            m_highestIndex = m_count;
        }
        ++m_count;
    }

    /// The few points themselves, or of many the two that reach farthest, in the order they came.
    template <typename Use>
    void forEach(Use use) const
    {
        if (m_count <= int(m_first.size())) {
            std::for_each(m_first.cbegin(), m_first.cbegin() + m_count, use);
            return;
        }
        use(m_lowestIndex < m_highestIndex ? m_lowest : m_highest);
        use(m_lowestIndex < m_highestIndex ? m_highest : m_lowest);
    }

private:
    using Point = std::pair<double, double>;

    double m_low = 0;
    double m_high = 0;
    int m_count = 0;
    std::array<Point, 4> m_first;
    Point m_lowest;
    Point m_highest;
    int m_lowestIndex = 0;
    int m_highestIndex = 0;
};

class Builder
{
public:
    explicit Builder(const LineField &field) : m_field(field) {}

    void add(double xValue, double value, double largestStep)
    {
        if (!m_column.holds(xValue)) {
            if (std::abs(xValue - m_lastX) > largestStep)
                breakLine();
            endColumn();
            m_column.start(columnAround(xValue));
        }
        m_column.add(xValue, value);
        m_lastX = xValue;
    }

    void breakLine()
    {
        endColumn();
        if (m_started && !m_joined && m_field.visible.contains(m_last))
            m_path.dots.append(m_last);
        m_started = false;
        m_joined = false;
    }

    LinePath path() const { return m_path; }

private:
    /// By its x values, for which a point on the border belongs to the same column as for all others beside it, however
    /// its coordinate is rounded.
    Range columnAround(double xValue) const
    {
        double left = std::floor(m_field.x.pixel(xValue) / m_field.column) * m_field.column;
        if (xValue < m_field.x.value(left))
            left -= m_field.column;
        else if (xValue >= m_field.x.value(left + m_field.column))
            left += m_field.column;
        return {m_field.x.value(left), m_field.x.value(left + m_field.column)};
    }

    void endColumn()
    {
        m_column.forEach([this](const std::pair<double, double> &point) {
            lineTo({m_field.x.pixel(point.first), m_field.y.pixel(point.second)});
        });
        m_column.end();
    }

    void lineTo(const QPointF &point)
    {
        QLineF line(m_last, point);
        if (m_started && !line.isNull()) {
            m_joined = true;
            if (clip(line, m_field.visible))
                m_path.segments.append(line);
        }
        m_started = true;
        m_last = point;
    }

    const LineField &m_field;
    LinePath m_path;
    Column m_column;
    double m_lastX = 0;
    QPointF m_last;
    bool m_started = false;
    bool m_joined = false; ///< to a point at another place
};

} // namespace

LinePath linePath(const std::vector<double> &xs, const std::vector<double> &ys, const LineField &field)
{
    Builder builder(field);
    const size_t count = std::min(xs.size(), ys.size());
    const auto largestStep = [&](size_t i) {
        return field.largestSteps ? field.largestSteps->at(i) : std::numeric_limits<double>::infinity();
    };
    for (size_t i = 0; i < count; ++i) {
        if (!isValue(xs[i]))
            continue;
        if (isValue(ys[i]))
            builder.add(xs[i], ys[i], largestStep(i));
        else
            builder.breakLine();
    }
    builder.breakLine();
    return builder.path();
}

} // namespace chart
