#include "views/ResizeLabel.h"

#include <QFontMetricsF>
#include <QTest>
#include <QVBoxLayout>
#include <cmath>
#include <memory>

namespace {

QSizeF textSize(const QLabel &label)
{
    return QFontMetricsF(label.font()).size(Qt::TextSingleLine, label.text());
}

void setPointSize(QLabel &label, double size)
{
    QFont font = label.font();
    font.setPointSizeF(size);
    label.setFont(font);
}

} // namespace

class tst_ResizeLabel : public QObject
{
    Q_OBJECT

private slots:
    void scalesByTheTighterDirection_data()
    {
        QTest::addColumn<bool>("isUnit");
        QTest::addColumn<QSize>("size");
        QTest::newRow("value, width decides") << false << QSize(90, 200);
        QTest::newRow("value, height decides") << false << QSize(600, 50);
        QTest::newRow("unit, width decides") << true << QSize(60, 200);
        QTest::newRow("unit, height decides") << true << QSize(600, 30);
    }

    void scalesByTheTighterDirection()
    {
        QFETCH(bool, isUnit);
        QFETCH(QSize, size);
        const std::unique_ptr<ResizeLabel> label(isUnit ? new ResizeLabelUnit : new ResizeLabel);
        label->resize(size);
        setPointSize(*label, 13);
        label->setText(QStringLiteral("23.45"));
        const QSizeF before = textSize(*label);
        const QSize margins = isUnit ? QSize(0, 0) : QSize(10, 8);
        const double expected = 13 * qMin((size.width() - margins.width()) / before.width(),
                                          (size.height() - margins.height()) / before.height());
        label->fitFont();
        const double fitted = label->font().pointSizeF();
        QVERIFY2(fitted <= expected + 0.01, qPrintable(QString::number(expected)));
        if (fitted >= expected - 0.01)
            return;
        // What the last letter's rounding adds beyond the label is taken back in steps of two hundredths, none too
        // many.
        setPointSize(*label, fitted / 0.98);
        QVERIFY2(textSize(*label).width() > size.width() || textSize(*label).height() > size.height(),
                 qPrintable(QString::number(fitted)));
    }

    void repeatedFittingConverges()
    {
        ResizeLabel label;
        label.resize(97, 40);
        setPointSize(label, 4);
        label.setText(QStringLiteral("23.45"));
        for (int i = 0; i < 10; ++i)
            label.fitFont();
        QVERIFY(std::abs(textSize(label).width() - 87) < 3 || std::abs(textSize(label).height() - 32) < 3);
        const double settled = label.font().pointSizeF();
        label.fitFont();
        QVERIFY(std::abs(label.font().pointSizeF() - settled) < 0.5);
    }

    void fontGivenInPixelsIsFittedToo()
    {
        ResizeLabel label;
        QFont font = label.font();
        font.setPixelSize(10);
        label.setFont(font);
        label.setText(QStringLiteral("23.45"));
        label.resize(400, 160);
        label.fitFont();
        QVERIFY(label.font().pointSizeF() > 20);
    }

    void resizingFitsTheFont()
    {
        ResizeLabel label;
        label.resize(97, 40);
        label.setText(QStringLiteral("23.45"));
        label.show();
        const double small = label.font().pointSizeF();
        label.resize(400, 160);
        QVERIFY(label.font().pointSizeF() > small);
    }

    void emptyTextLeavesTheFont()
    {
        ResizeLabel label;
        setPointSize(label, 13);
        label.show();
        label.resize(400, 200);
        label.fitFont();
        QCOMPARE(label.font().pointSizeF(), 13.0);
    }

    void widthZeroGrowsTheFont()
    {
        ResizeLabel label;
        setPointSize(label, 4);
        label.setText(QStringLiteral("1"));
        label.resize(0, 60);
        const double tenPixelsWide = 4 * 10 / textSize(label).width();
        label.fitFont();
        QVERIFY(tenPixelsWide > 4);
        QVERIFY(std::abs(label.font().pointSizeF() - tenPixelsWide) < 0.01);
    }

    void tinyLabelsRecover_data()
    {
        QTest::addColumn<QSize>("size");
        for (const QSize size : {QSize(12, 9), QSize(10, 8), QSize(1, 1), QSize(0, 0), QSize(0, 30), QSize(30, 0)})
            QTest::addRow("%d x %d", size.width(), size.height()) << size;
    }

    void tinyLabelsRecover()
    {
        QFETCH(QSize, size);
        ResizeLabel label;
        setPointSize(label, 13);
        label.setText(QStringLiteral("23.45"));
        label.resize(size);
        for (int i = 0; i < 50; ++i) {
            label.fitFont();
            QVERIFY(std::isfinite(label.font().pointSizeF()));
            QVERIFY(label.font().pointSizeF() >= 1);
        }
        label.resize(97, 40);
        for (int i = 0; i < 5; ++i)
            label.fitFont();
        QVERIFY(label.font().pointSizeF() > 8);
        QVERIFY(textSize(label).width() <= 97);
    }

    void fontNeverOutgrowsTheLabel_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("value") << "23.45";
        QTest::newRow("unit") << QStringLiteral("\u00B0C");
        QTest::newRow("wide") << "WWWWWWWWWW";
        QTest::newRow("nothing measured") << "----";
    }

    void fontNeverOutgrowsTheLabel()
    {
        QFETCH(QString, text);
        ResizeLabel label;
        ResizeLabelUnit unit;
        for (ResizeLabel *each : {&label, static_cast<ResizeLabel *>(&unit)}) {
            each->setText(text);
            for (int width = 1; width < 400; width += 7) {
                each->resize(width, width / 3 + 3);
                each->fitFont();
                const QSizeF shown = textSize(*each);
                QVERIFY(each->font().pointSizeF() <= 1 ||
                        (shown.width() <= each->width() && shown.height() <= each->height()));
            }
        }
    }

    void grownFontLeavesTheWindowFreeToShrink()
    {
        QWidget window;
        auto *layout = new QVBoxLayout(&window);
        auto *label = new ResizeLabel(&window);
        auto *unit = new ResizeLabelUnit(&window);
        layout->addWidget(label);
        layout->addWidget(unit);
        window.show();
        const QSize before = window.minimumSizeHint();
        label->setText(QStringLiteral("23.45"));
        unit->setText(QStringLiteral("%RH"));
        window.resize(1900, 1000);
        layout->activate();
        QVERIFY(label->font().pointSizeF() > 50);
        QCOMPARE(window.minimumSizeHint(), before);
        window.resize(100, 80);
        QCOMPARE(window.size(), QSize(100, 80));
    }

    void textIsPlain()
    {
        QCOMPARE(ResizeLabel().textFormat(), Qt::PlainText);
        QCOMPARE(ResizeLabelUnit().textFormat(), Qt::PlainText);
    }
};

QTEST_MAIN(tst_ResizeLabel)
#include "tst_ResizeLabel.moc"
