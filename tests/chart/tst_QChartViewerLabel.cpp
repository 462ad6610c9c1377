#include "chart/QChartViewerLabel.h"

#include <QResizeEvent>
#include <QSignalSpy>
#include <QTest>

class tst_QChartViewerLabel : public QObject
{
    Q_OBJECT

private slots:
    void everyResizeAsksForARedraw()
    {
        QChartViewerLabel label;
        QSignalSpy refresh(&label, &QChartViewerLabel::refreshChart);
        for (int i = 1; i <= 3; ++i) {
            QResizeEvent event(QSize(100 + i, 50), label.size());
            QCoreApplication::sendEvent(&label, &event);
            QCOMPARE(refresh.size(), i);
        }
    }

    void aResizeOfTheShownLabelAsksOnce()
    {
        QChartViewerLabel label;
        label.resize(200, 100);
        label.show();
        QVERIFY(QTest::qWaitForWindowExposed(&label));
        QSignalSpy refresh(&label, &QChartViewerLabel::refreshChart);
        label.resize(300, 120);
        QTRY_COMPARE(label.size(), QSize(300, 120));
        QCOMPARE(refresh.size(), 1);
    }
};

QTEST_MAIN(tst_QChartViewerLabel)
#include "tst_QChartViewerLabel.moc"
