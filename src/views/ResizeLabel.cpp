#include "views/ResizeLabel.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <cmath>

namespace {

constexpr QSize valueMargins(10, 8);
constexpr QSize unitMargins(0, 0);

constexpr float smallestPointSize = 1;

// Letters do not grow by exactly the factor of their font: the rounding of a large step is taken back in small ones.
constexpr float backStep = 0.98F;

double pointSizeOf(const QFont &font)
{
    return font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
}

QSizeF sizeOf(const QString &text, const QFont &font)
{
    return QFontMetricsF(font).size(Qt::TextSingleLine, text);
}

/// The text's own extent times this fills the label less the margin. A label smaller than its margin still gives a
/// positive factor, but none that goes beyond the label.
float factor(int extent, int margin, double textExtent)
{
    const int wanted = std::abs(extent - margin);
    const int room = extent > 0 ? qMin(wanted, extent) : wanted;
    return std::abs(float(room) / float(textExtent));
}

bool holds(const QSize &label, const QSizeF &text)
{
    return (label.width() <= 0 || text.width() <= label.width()) &&
           (label.height() <= 0 || text.height() <= label.height());
}

} // namespace

ResizeLabel::ResizeLabel(QWidget *parent) : ResizeLabel(valueMargins, parent) {}

ResizeLabel::ResizeLabel(const QSize &margins, QWidget *parent) : QLabel(parent), m_margins(margins)
{
    setTextFormat(Qt::PlainText);
}

void ResizeLabel::fitFont()
{
    QFont fitted = font();
    const QSizeF now = sizeOf(text(), fitted);
    if (text().isEmpty() || now.isEmpty())
        return;
    const float scale =
        qMin(factor(width(), m_margins.width(), now.width()), factor(height(), m_margins.height(), now.height()));
    float pointSize = qMax(smallestPointSize, float(pointSizeOf(fitted)) * scale);
    fitted.setPointSizeF(double(pointSize));
    while (pointSize > smallestPointSize && !holds(size(), sizeOf(text(), fitted))) {
        pointSize = qMax(smallestPointSize, pointSize * backStep);
        fitted.setPointSizeF(double(pointSize));
    }
    setFont(fitted);
}

QSize ResizeLabel::sizeHint() const
{
    return {0, 0};
}

QSize ResizeLabel::minimumSizeHint() const
{
    return {0, 0};
}

void ResizeLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    fitFont();
}

ResizeLabelUnit::ResizeLabelUnit(QWidget *parent) : ResizeLabel(unitMargins, parent) {}
