#pragma once

#include <QColor>
#include <QFont>
#include <QSizeF>
#include <QString>
#include <vector>

class QPainter;
class QPointF;

namespace chart {

/// A font of so many points at 96 dots an inch, the density that chart geometry in pixels is made for.
QFont textFont(const QString &family, int points, bool bold);

/// One line of text made of pieces: plain, on a box of colour, or a line icon as legends have it.
class TextBlock
{
public:
    TextBlock(const QFont &font, const QColor &colour);

    TextBlock &add(const QString &text);
    TextBlock &addBoxed(const QString &text, const QColor &box);
    TextBlock &addBoxed(const QString &text, const QColor &box, const QColor &colour);
    TextBlock &addLineIcon(const QColor &colour);
    TextBlock &add(const TextBlock &other);

    bool isEmpty() const;
    /// In whole pixels.
    QSizeF size() const;
    /// The width after narrowing for @p room; 0 when the text would become illegible and is not drawn.
    double widthWithin(double room) const;

    /// Draws the block with its corner or edge named by @p corner at @p anchor, narrowed to @p room where it is wider,
    /// not at all where it cannot be.
    void draw(QPainter &painter, const QPointF &anchor, Qt::Alignment corner) const;
    void draw(QPainter &painter, const QPointF &anchor, Qt::Alignment corner, double room) const;

private:
    struct Piece
    {
        QString text;
        QColor colour;
        QColor box;  ///< invalid: none
        QColor icon; ///< invalid: a text
        double width = 0;
    };

    void append(const QString &text, const QColor &colour, const QColor &box);
    void drawPieces(QPainter &painter, QPointF corner) const;

    QFont m_font;
    QColor m_colour;
    double m_height;
    double m_ascent;
    double m_width = 0;
    std::vector<Piece> m_pieces;
};

} // namespace chart
