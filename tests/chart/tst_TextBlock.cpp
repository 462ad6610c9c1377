#include "chart/TextBlock.h"

#include <QImage>
#include <QPainter>
#include <QTest>

using namespace chart;

namespace {

const QColor box(0, 0, 255);

TextBlock block(const QString &text)
{
    return TextBlock(textFont(QStringLiteral("Arial"), 8, true), Qt::white).addBoxed(text, box);
}

/// The part of the picture that the box covers.
QRect boxIn(const QImage &image)
{
    QRect covered;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) != QColor(Qt::black))
                covered |= QRect(x, y, 1, 1);
        }
    }
    return covered;
}

QImage draw(const TextBlock &text, Qt::Alignment corner, double room = 1000, qreal density = 1)
{
    QImage image(QSize(200, 60) * density, QImage::Format_RGB32);
    image.setDevicePixelRatio(density);
    image.fill(Qt::black);
    QPainter painter(&image);
    text.draw(painter, {100, 30}, corner, room);
    return image;
}

} // namespace

class tst_TextBlock : public QObject
{
    Q_OBJECT

private slots:
    void fontsAreMeasuredInPixels()
    {
        QCOMPARE(textFont("Arial", 8, true).pixelSize(), 11);
        QVERIFY(textFont("Arial", 8, true).bold());
        QCOMPARE(textFont("Arial", 9, false).pixelSize(), 12);
    }

    void standsAtItsCorner()
    {
        const TextBlock text = block(" 21.50 ");
        const QSize size = text.size().toSize();
        QCOMPARE(boxIn(draw(text, Qt::AlignLeft | Qt::AlignTop)), QRect(QPoint(100, 30), size));
        QCOMPARE(boxIn(draw(text, Qt::AlignRight | Qt::AlignTop)), QRect(QPoint(100 - size.width(), 30), size));
        QCOMPARE(boxIn(draw(text, Qt::AlignLeft | Qt::AlignBottom)), QRect(QPoint(100, 30 - size.height()), size));
        QCOMPARE(boxIn(draw(text, Qt::AlignLeft | Qt::AlignVCenter)), QRect(QPoint(100, 30 - size.height() / 2), size));
    }

    void piecesStandSideBySide()
    {
        TextBlock text(textFont("Arial", 8, false), Qt::white);
        text.addLineIcon(Qt::red).addBoxed(" a ", box);
        QCOMPARE(text.size().width(), block(" a ").size().width() > 0 ? boxIn(draw(text, Qt::AlignLeft)).width() : 0);
        TextBlock twice(textFont("Arial", 8, false), Qt::white);
        twice.add(text).add(text);
        QCOMPARE(twice.size().width(), 2 * text.size().width());
    }

    void isNarrowedToItsRoomOrLeftOut()
    {
        const TextBlock text = block("narrowed where there is a little less room");
        const double width = text.size().width();
        QCOMPARE(text.widthWithin(width), width);
        QCOMPARE(text.widthWithin(width * 0.8), width * 0.8);
        QCOMPARE(text.widthWithin(width * 0.7), 0.0);
        const TextBlock shortText = block(" 21.50 ");
        const int room = int(shortText.size().width()) - 4;
        const QRect narrowed = boxIn(draw(shortText, Qt::AlignLeft | Qt::AlignTop, room));
        QVERIFY(narrowed.width() <= room + 1);
        QVERIFY(narrowed.width() >= room - 1);
        QVERIFY(boxIn(draw(shortText, Qt::AlignLeft | Qt::AlignTop, 5)).isNull());
    }

    void isSharpAtDoubleDensity()
    {
        const TextBlock text = block(" 21.50 ");
        const QRect covered = boxIn(draw(text, Qt::AlignLeft | Qt::AlignTop, 1000, 2));
        QCOMPARE(covered, QRect(QPoint(200, 60), text.size().toSize() * 2));
    }
};

QTEST_MAIN(tst_TextBlock)
#include "tst_TextBlock.moc"
