#include "views/TopCustomFrame.h"

#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

class tst_TopCustomFrame : public QObject
{
    Q_OBJECT

private slots:
    void reportsPressDragAndDoubleClick()
    {
        TopCustomFrame frame;
        frame.resize(200, 40);
        frame.show();
        QSignalSpy clicks(&frame, &TopCustomFrame::customClick);
        QSignalSpy moves(&frame, &TopCustomFrame::customMove);
        QSignalSpy doubleClicks(&frame, &TopCustomFrame::customDoubleClick);

        QTest::mousePress(&frame, Qt::LeftButton, {}, QPoint(10, 12));
        QCOMPARE(clicks.takeFirst().at(0).toPoint(), frame.mapToGlobal(QPoint(10, 12)));
        QMouseEvent drag(QEvent::MouseMove, QPoint(30, 14), frame.mapToGlobal(QPoint(30, 14)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&frame, &drag);
        QCOMPARE(moves.count(), 1);
        QCOMPARE(moves.takeFirst().at(0).toPoint(), frame.mapToGlobal(QPoint(30, 14)));
        QTest::mouseRelease(&frame, Qt::LeftButton, {}, QPoint(30, 14));
        QCOMPARE(doubleClicks.count(), 0);
        QTest::mouseDClick(&frame, Qt::LeftButton, {}, QPoint(30, 14));
        QCOMPARE(doubleClicks.count(), 1);
    }
};

QTEST_MAIN(tst_TopCustomFrame)
#include "tst_TopCustomFrame.moc"
