#include "chart/TextBlock.h"

#include "chart/SharpFill.h"

#include <QFontMetricsF>
#include <QPainter>
#include <cmath>
#include <limits>

namespace chart {

namespace {

constexpr double iconWidth = 18;
constexpr double iconLineWidth = 3;
// Letters narrower than this share of their width are hard to read.
constexpr double narrowest = 0.75;

} // namespace

QFont textFont(const QString &family, int points, bool bold)
{
    constexpr double pixelsPerPoint = 96.0 / 72;
    QFont font(family);
    font.setPixelSize(qRound(points * pixelsPerPoint));
    font.setBold(bold);
    return font;
}

TextBlock::TextBlock(const QFont &font, const QColor &colour) : m_font(font), m_colour(colour)
{
    const QFontMetricsF metrics(m_font);
    m_ascent = std::ceil(metrics.ascent());
    m_height = m_ascent + std::ceil(metrics.descent());
}

TextBlock &TextBlock::add(const QString &text)
{
    append(text, m_colour, {});
    return *this;
}

TextBlock &TextBlock::addBoxed(const QString &text, const QColor &box)
{
    append(text, m_colour, box);
    return *this;
}

TextBlock &TextBlock::addBoxed(const QString &text, const QColor &box, const QColor &colour)
{
    append(text, colour, box);
    return *this;
}

TextBlock &TextBlock::addLineIcon(const QColor &colour)
{
    m_pieces.push_back({{}, {}, {}, colour, iconWidth});
    m_width += iconWidth;
    return *this;
}

TextBlock &TextBlock::add(const TextBlock &other)
{
    m_pieces.insert(m_pieces.end(), other.m_pieces.cbegin(), other.m_pieces.cend());
    m_width += other.m_width;
    return *this;
}

void TextBlock::append(const QString &text, const QColor &colour, const QColor &box)
{
    const double width = std::ceil(QFontMetricsF(m_font).horizontalAdvance(text));
    m_pieces.push_back({text, colour, box, {}, width});
    m_width += width;
}

bool TextBlock::isEmpty() const
{
    return m_pieces.empty();
}

QSizeF TextBlock::size() const
{
    return {m_width, m_height};
}

double TextBlock::widthWithin(double room) const
{
    if (m_width <= room)
        return m_width;
    return room < m_width * narrowest ? 0 : room;
}

void TextBlock::draw(QPainter &painter, const QPointF &anchor, Qt::Alignment corner) const
{
    draw(painter, anchor, corner, std::numeric_limits<double>::infinity());
}

void TextBlock::draw(QPainter &painter, const QPointF &anchor, Qt::Alignment corner, double room) const
{
    const double width = widthWithin(room);
    if (width <= 0)
        return;
    QPointF topLeft = anchor;
    if (corner & Qt::AlignRight)
        topLeft.rx() -= width;
    else if (corner & Qt::AlignHCenter)
        topLeft.rx() -= std::floor(width / 2);
    if (corner & Qt::AlignBottom)
        topLeft.ry() -= m_height;
    else if (corner & Qt::AlignVCenter)
        topLeft.ry() -= std::floor(m_height / 2);
    if (width >= m_width) {
        drawPieces(painter, topLeft);
        return;
    }
    painter.save();
    painter.translate(topLeft);
    painter.scale(width / m_width, 1);
    drawPieces(painter, {0, 0});
    painter.restore();
}

void TextBlock::drawPieces(QPainter &painter, QPointF corner) const
{
    painter.setFont(m_font);
    for (const Piece &piece : m_pieces) {
        if (piece.box.isValid())
            fillSharp(painter, {corner, QSizeF(piece.width, m_height)}, piece.box);
        if (piece.icon.isValid()) {
            const double y = corner.y() + std::floor((m_height - iconLineWidth) / 2);
            fillSharp(painter, {corner.x(), y, iconWidth, iconLineWidth}, piece.icon);
        } else {
            painter.setPen(piece.colour);
            painter.drawText(corner + QPointF(0, m_ascent), piece.text);
        }
        corner.rx() += piece.width;
    }
}

} // namespace chart
