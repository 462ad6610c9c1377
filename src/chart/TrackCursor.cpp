#include "chart/TrackCursor.h"

#include "chart/Colour.h"
#include "chart/NoValue.h"
#include "chart/XYChart.h"

#include <QDateTime>
#include <algorithm>

namespace chart {

namespace {

constexpr quint32 dashColour = 0x80f4f4f4;
constexpr quint32 timeBoxColour = 0x373737;
constexpr quint32 timeColour = 0xe6e6e6;
constexpr quint32 textColour = 0xffffff;

constexpr int textPoints = 8;
constexpr int timeDistance = 6;
constexpr int blankAboveLetters = 2;
constexpr int dotRadius = 4;
constexpr int valueDistance = 5;
constexpr int captionDistance = 3;
constexpr int legendIndent = 5;
constexpr int dateIndent = 100;
constexpr int spanIndent = 240;
constexpr int captionGap = 8;

QString valueText(double value)
{
    constexpr int longest = 16;
    if (!isValue(value))
        return QStringLiteral("N/A");
    const QString text = QString::number(value, 'f', 2);
    return text.size() <= longest ? text : QString::number(value, 'g');
}

QString padded(const QString &text)
{
    return QLatin1Char(' ') + text + QLatin1Char(' ');
}

/// One drawing of the cursor.
class Cursor
{
public:
    Cursor(XYChart &picture, int x)
        : m_chart(picture),
          m_layer(picture.dynamicLayer()),
          m_plot(picture.plotArea()),
          m_bold(textFont(picture.fontFamily(), textPoints, true)),
          m_regular(textFont(picture.fontFamily(), textPoints, false)),
          m_x(std::clamp(x, m_plot.left(), m_plot.right())),
          m_time(picture.nearestXValue(m_x))
    {
        if (!m_time)
            return;
        m_x = *m_chart.xCoordinate(*m_time);
        m_localTime = QDateTime::fromSecsSinceEpoch(qint64(*m_time));
    }

    void draw(const QString &span)
    {
        m_layer.addDashedLine(m_x, m_plot.top(), m_plot.bottom(), colour(dashColour), 1, 1);
        drawTime();
        drawValues();
        drawCaptions(span);
    }

private:
    TextBlock block(const QFont &font) const { return {font, colour(textColour)}; }

    void drawTime()
    {
        if (!m_time)
            return;
        TextBlock text = block(m_bold);
        text.addBoxed(padded(m_localTime.toString(QStringLiteral("hh:mm:ss"))), colour(timeBoxColour),
                      colour(timeColour));
        const int width = int(text.size().width());
        const int left = std::max(0, std::min(m_x - width / 2, m_chart.size().width() - width));
        const QPointF corner(left, m_plot.bottom() + timeDistance);
        clearAxisLabels({corner, text.size()});
        m_layer.addText(text, corner, Qt::AlignLeft | Qt::AlignTop);
    }

    /// They step below it. Where there is no room they go: of a label half covered, the rest would be left to puzzle
    /// over.
    void clearAxisLabels(const QRectF &cover)
    {
        for (const DateAxis::Label &label : m_chart.xLabels()) {
            if (!label.place.intersects(cover))
                continue;
            m_layer.addBox(label.place, m_chart.background());
            const double top = std::min(cover.bottom(), m_chart.size().height() - label.place.height());
            if (top >= cover.bottom() - blankAboveLetters)
                m_layer.addText(label.text, {label.place.left(), top}, Qt::AlignLeft | Qt::AlignTop);
        }
    }

    void drawValues()
    {
        if (!m_time)
            return;
        for (const auto &layer : m_chart.layers()) {
            const int index = layer->nearestIndex(*m_time, *m_chart.xAxis().range());
            if (index < 0)
                continue;
            for (const auto &dataSet : layer->dataSets()) {
                if (!dataSet->name.isEmpty() && dataSet->colour.alpha() > 0)
                    drawValue(*dataSet, size_t(index));
            }
        }
    }

    void drawValue(const DataSet &dataSet, size_t index)
    {
        const double value = index < dataSet.values.size() ? dataSet.values[index] : noValue;
        TextBlock entry = block(m_bold);
        entry.addLineIcon(dataSet.colour).add(padded(dataSet.name + QLatin1Char(':')));
        entry.addBoxed(padded(valueText(value)), dataSet.colour);
        m_legend.push_back(entry);

        const std::optional<int> y = m_chart.yCoordinate(value);
        if (!y || *y < m_plot.top() || *y > m_plot.bottom())
            return;
        m_layer.addDot({m_x, *y}, dotRadius, dataSet.colour);
        TextBlock label = block(m_bold);
        label.addBoxed(padded(valueText(value)), dataSet.colour);
        if (m_x <= (m_plot.left() + m_plot.right()) / 2)
            m_layer.addText(label, QPointF(m_x + valueDistance, *y), Qt::AlignLeft | Qt::AlignVCenter);
        else
            m_layer.addText(label, QPointF(m_x - valueDistance, *y), Qt::AlignRight | Qt::AlignVCenter);
    }

    /// A caption that its predecessor reaches into moves to the right; the last is left out where it cannot stand.
    void drawCaptions(const QString &spanText)
    {
        TextBlock legend = block(m_bold);
        std::for_each(m_legend.crbegin(), m_legend.crend(), [&](const TextBlock &entry) { legend.add(entry); });
        double taken = addCaption(legend, m_plot.left() + legendIndent);
        if (m_time) {
            TextBlock date = block(m_regular);
            date.add(QStringLiteral("[ %1 ]").arg(m_localTime.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))));
            taken = addCaption(date, std::max(double(m_plot.left() + dateIndent), taken));
        }
        TextBlock span = block(m_regular);
        span.add(spanText);
        const double spanLeft = m_plot.right() - spanIndent;
        if (spanLeft >= taken)
            addCaption(span, spanLeft);
    }

    /// Returns from where on the next caption may stand.
    double addCaption(const TextBlock &text, double left)
    {
        const double room = m_chart.size().width() - left;
        m_layer.addText(text, QPointF(left, m_plot.top() - captionDistance), Qt::AlignLeft | Qt::AlignBottom, room);
        return left + text.widthWithin(room) + captionGap;
    }

    XYChart &m_chart;
    DynamicLayer &m_layer;
    const PlotArea &m_plot;
    const QFont m_bold;
    const QFont m_regular;
    int m_x;
    const std::optional<double> m_time;
    QDateTime m_localTime; ///< the same, as the operator's clock shows it
    std::vector<TextBlock> m_legend;
};

} // namespace

void drawTrackCursor(XYChart &chart, int x, const QString &span)
{
    chart.dynamicLayer().clear();
    if (chart.plotArea().isEmpty())
        return;
    Cursor(chart, x).draw(span);
}

} // namespace chart
