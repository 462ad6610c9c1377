#include "dialogs/ElidingDelegate.h"
#include "dialogs/PlainToolTip.h"

#include <QHelpEvent>
#include <QListWidget>
#include <QTest>
#include <QToolTip>

class tst_ElidingDelegate : public QObject
{
    Q_OBJECT

private slots:
    void rowsAreNoWiderThanTheList();
    void columnsKeepAGap();
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

void tst_ElidingDelegate::columnsKeepAGap()
{
    const ElidingDelegate delegate;
    QCOMPARE(delegate.displayText(QStringLiteral("Greenhouse 1\t[COM5]"), QLocale::c()),
             QStringLiteral("Greenhouse 1  \t[COM5]"));
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
