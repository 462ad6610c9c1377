#include "dialogs/ElidingDelegate.h"
#include "dialogs/PlainToolTip.h"

#include <QHelpEvent>
#include <QListWidget>
#include <QTest>
#include <QToolTip>

namespace {

bool isInk(const QImage &row, int x)
{
    for (int y = 0; y < row.height(); ++y) {
        if (row.pixelColor(x, y).lightness() < 128)
            return true;
    }
    return false;
}

/// The widest gap between letters of a row, and where the text goes on behind it.
QPair<int, int> gapAndSecondColumn(const QPixmap &picture)
{
    const QImage row = picture.toImage();
    QPair<int, int> widest(0, 0);
    int lastInk = -1;
    for (int x = 0; x < row.width(); ++x) {
        if (!isInk(row, x))
            continue;
        if (lastInk >= 0 && x - lastInk - 1 > widest.first)
            widest = {x - lastInk - 1, x};
        lastInk = x;
    }
    return widest;
}

} // namespace

class tst_ElidingDelegate : public QObject
{
    Q_OBJECT

private slots:
    void rowsAreNoWiderThanTheList();
    void secondColumnStandsClear_data();
    void secondColumnStandsClear();
    void secondColumnFollowsItsRows();
    void longSecondColumnIsCutInItself();
    void toolTip_data();
    void toolTip();
};

void tst_ElidingDelegate::rowsAreNoWiderThanTheList()
{
    QListWidget list;
    list.setItemDelegate(new ElidingDelegate(&list));
    list.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list.addItem(QString(500, QLatin1Char('m')));
    list.resize(200, 100);
    list.show();
    QCOMPARE(list.visualItemRect(list.item(0)).width(), list.viewport()->width());
}

void tst_ElidingDelegate::secondColumnStandsClear_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::newRow("one tab stop wide") << QStringList{"Attic", "Archive 1", "A"};
    QTest::newRow("of all widths") << QStringList{"A", "Greenhouse 1", "Server room 1", "Clean room number 12"};
    QTest::newRow("too wide") << QStringList{"A", QString(60, QLatin1Char('m'))};
    QStringList growing; // one of them ends right at a tab stop
    for (int i = 10; i < 40; ++i)
        growing << QString(i, QLatin1Char('i'));
    QTest::newRow("growing") << growing;
}

void tst_ElidingDelegate::secondColumnStandsClear()
{
    QFETCH(QStringList, names);
    QListWidget list;
    list.setItemDelegate(new ElidingDelegate(&list));
    list.setStyleSheet("background: white; color: black;");
    for (const QString &name : std::as_const(names))
        list.addItem(name + "\t[10.77.0.2:23]");
    list.resize(400, 700);
    list.show();
    QSet<int> begins;
    for (int row = 0; row < names.size(); ++row) {
        const auto [gap, begin] = gapAndSecondColumn(list.viewport()->grab(list.visualItemRect(list.item(row))));
        QVERIFY2(gap >= 8, qPrintable(names.at(row)));
        begins << begin;
    }
    QCOMPARE(begins.size(), 1);
}

void tst_ElidingDelegate::secondColumnFollowsItsRows()
{
    QListWidget list;
    list.setItemDelegate(new ElidingDelegate(&list));
    list.setStyleSheet("background: white; color: black;");
    list.addItem("A\t[10.77.0.2:23]");
    list.resize(400, 100);
    list.show();
    const auto begin = [&list] {
        return gapAndSecondColumn(list.viewport()->grab(list.visualItemRect(list.item(0)))).second;
    };
    const int narrow = begin();
    list.addItem("Clean room number 12\t[10.77.0.3:23]");
    const int wide = begin();
    QVERIFY(wide > narrow);
    list.item(1)->setText("B\t[10.77.0.3:23]");
    QCOMPARE(begin(), narrow);
    list.item(1)->setText("Clean room number 12\t[10.77.0.3:23]");
    QCOMPARE(begin(), wide);
    delete list.item(1);
    QCOMPARE(begin(), narrow);
}

void tst_ElidingDelegate::longSecondColumnIsCutInItself()
{
    QListWidget list;
    list.setItemDelegate(new ElidingDelegate(&list));
    list.setStyleSheet("background: white; color: black;");
    list.addItem("Kitchen\t[" + QString(100, QLatin1Char('m')) + "]");
    list.addItem("Kitchen\t[10.77.0.2:23]");
    list.resize(300, 100);
    list.show();
    const auto cut = gapAndSecondColumn(list.viewport()->grab(list.visualItemRect(list.item(0))));
    QCOMPARE(cut, gapAndSecondColumn(list.viewport()->grab(list.visualItemRect(list.item(1)))));
}

void tst_ElidingDelegate::toolTip_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("tip");
    QTest::addColumn<QString>("shown");

    const QString longText(500, QLatin1Char('m'));
    QTest::newRow("fits") << "Oven"
                          << "02AA"
                          << "02AA";
    QTest::newRow("does not fit") << longText << "02AA" << longText + "\n02AA";
    QTest::newRow("looks like markup") << "Oven"
                                       << "<b>02AA"
                                       << "<b>02AA";
    QTest::newRow("text looks like markup") << "<b>" + longText << "02AA"
                                            << "<b>" + longText + "\n02AA";
}

void tst_ElidingDelegate::toolTip()
{
    QFETCH(QString, text);
    QFETCH(QString, tip);
    QFETCH(QString, shown);
    QListWidget list;
    auto *delegate = new ElidingDelegate(&list);
    list.setItemDelegate(delegate);
    list.addItem(text);
    list.item(0)->setToolTip(tip);
    list.resize(200, 100);
    list.show();
    QStyleOptionViewItem option;
    option.initFrom(&list);
    option.rect = list.visualItemRect(list.item(0));
    QHelpEvent event(QEvent::ToolTip, option.rect.center(), list.mapToGlobal(option.rect.center()));
    QVERIFY(delegate->helpEvent(&event, &list, option, list.model()->index(0, 0)));
    QCOMPARE(QToolTip::text(), plainToolTip(shown));
    QToolTip::hideText();
}

QTEST_MAIN(tst_ElidingDelegate)
#include "tst_ElidingDelegate.moc"
