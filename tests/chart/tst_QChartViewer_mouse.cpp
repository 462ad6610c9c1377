#include "ViewerFixture.h"

#include <QTimer>
#include <QWheelEvent>

Q_DECLARE_METATYPE(QMouseEvent *)
Q_DECLARE_METATYPE(QWheelEvent *)

class tst_QChartViewer_mouse : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qRegisterMetaType<QMouseEvent *>();
        qRegisterMetaType<QWheelEvent *>();
        qRegisterMetaType<QEvent *>();
    }

    void init() { m_fixture = std::make_unique<ViewerFixture>(); }
    void cleanup() { m_fixture.reset(); }

    // Where the mouse is

    void knowsWhetherTheMouseIsOnThePlotArea()
    {
        QVERIFY(!viewer()->isMouseOnPlotArea());
        m_fixture->moveTo({100, 50});
        QVERIFY(viewer()->isMouseOnPlotArea());
        m_fixture->moveTo({20, 50});
        QVERIFY(!viewer()->isMouseOnPlotArea());
        viewer()->setMouseMargins({40, 0, 0, 0});
        QVERIFY(viewer()->isMouseOnPlotArea());
        m_fixture->leave();
        QVERIFY(!viewer()->isMouseOnPlotArea());
        m_fixture->moveTo({100, 50});
        QVERIFY(viewer()->isMouseOnPlotArea());
    }

    void plotAreaMouseXStaysWithinThePlotArea()
    {
        m_fixture->moveTo({100, 50});
        QCOMPARE(viewer()->plotAreaMouseX(), 100);
        m_fixture->moveTo({10, 50});
        QCOMPARE(viewer()->plotAreaMouseX(), 50);
        m_fixture->moveTo({290, 50});
        QCOMPARE(viewer()->plotAreaMouseX(), 250);
    }

    void signalsOfMovesAndLeaves()
    {
        QStringList calls;
        connect(viewer(), &QChartViewer::mouseMove, this, [&] { calls << "move"; });
        connect(viewer(), &QChartViewer::mouseMoveChart, this, [&] { calls << "chart"; });
        connect(viewer(), &QChartViewer::mouseLeaveChart, this, [&] { calls << "leave chart"; });
        connect(viewer(), &QChartViewer::mouseMovePlotArea, this, [&] { calls << "plot"; });
        connect(viewer(), &QChartViewer::mouseLeavePlotArea, this, [&] { calls << "leave plot"; });
        const auto callsOf = [&](auto &&action) {
            calls.clear();
            action();
            return calls;
        };
        QCOMPARE(callsOf([&] { m_fixture->moveTo({10, 10}); }), QStringList({"move", "chart"}));
        QCOMPARE(callsOf([&] { m_fixture->moveTo({100, 50}); }), QStringList({"move", "plot", "chart"}));
        QCOMPARE(callsOf([&] { m_fixture->moveTo({10, 10}); }), QStringList({"move", "leave plot", "chart"}));
        QCOMPARE(callsOf([&] { m_fixture->moveTo({11, 10}); }), QStringList({"move", "chart"}));
        QCOMPARE(callsOf([&] { m_fixture->leave(); }), QStringList({"leave chart"}));
        m_fixture->moveTo({100, 50});
        QCOMPARE(callsOf([&] { m_fixture->leave(); }), QStringList({"leave plot", "leave chart"}));
    }

    // Mouse moves in quick succession

    void ofTenRapidMovesTheFirstAndTheLastAreHandled()
    {
        QList<QPoint> handled;
        noteMoves(handled);
        for (int i = 0; i < 10; ++i) {
            m_fixture->move({100 + i, 50});
            ++m_fixture->now;
        }
        QCOMPARE(handled, QList<QPoint>({{100, 50}}));
        QTRY_COMPARE(handled, QList<QPoint>({{100, 50}, {109, 50}}));
    }

    void aMoveAfterTenMillisecondsIsHandledAtOnce()
    {
        QList<QPoint> handled;
        noteMoves(handled);
        m_fixture->move({100, 50});
        m_fixture->now += 9;
        m_fixture->move({101, 50});
        QCOMPARE(handled.size(), 1);
        m_fixture->now += 1;
        QTRY_COMPARE(handled.size(), 2);
        m_fixture->now += 10;
        m_fixture->move({102, 50});
        QCOMPARE(handled.size(), 3);
    }

    void whileAMoveIsKeptNewOnesReplaceIt()
    {
        QList<QPoint> handled;
        noteMoves(handled);
        m_fixture->move({100, 50});
        m_fixture->move({101, 50});
        m_fixture->now += 20;
        m_fixture->move({102, 50});
        QCOMPARE(handled.size(), 1);
        // The kept one needs no more than the 10 ms, which are over; nothing here moves the clock on.
        QTRY_COMPARE(handled, QList<QPoint>({{100, 50}, {102, 50}}));
    }

    void afterAQuarterSecondANewMoveOvertakesAKeptOne()
    {
        QList<QPoint> handled;
        noteMoves(handled);
        m_fixture->move({100, 50});
        m_fixture->move({101, 50});
        m_fixture->now += 250;
        m_fixture->move({102, 50});
        QCOMPARE(handled, QList<QPoint>({{100, 50}, {102, 50}}));
        // The older position does not come after the newer one.
        m_fixture->now += 20;
        waitForTimers();
        QCOMPARE(handled.size(), 2);
    }

    void aKeptMoveIsForgottenWhenTheMouseLeaves()
    {
        m_fixture->moveTo({100, 50});
        m_fixture->move({101, 50});
        m_fixture->leave();
        QSignalSpy moved(viewer(), &QChartViewer::mouseMove);
        m_fixture->now += 20;
        waitForTimers();
        QCOMPARE(moved.size(), 0);
        QVERIFY(!viewer()->isMouseOnPlotArea());
    }

    // The wheel

    void wheelEventsArePassedOnOnlyToThoseWhoListen()
    {
        QVERIFY(!wheel());
        QSignalSpy turned(viewer(), &QChartViewer::mouseWheel);
        QVERIFY(wheel());
        QCOMPARE(turned.size(), 1);
    }

    void aWheelHandlerCanZoomAtTheMouse()
    {
        connect(viewer(), &QChartViewer::mouseWheel, this, [this](QWheelEvent *event) {
            if (viewer()->zoomAt(event->position().toPoint(), 2))
                viewer()->updateViewPort(true, false);
        });
        wheel();
        QCOMPARE(viewer()->viewPort(), QRectF(0.125, 0, 0.5, 1));
    }

private:
    QChartViewer *viewer() const { return &m_fixture->viewer; }

    /// Whether the viewer kept the event.
    bool wheel()
    {
        const QPoint at(100, 50);
        QWheelEvent event(at, viewer()->mapToGlobal(at), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(viewer(), &event);
        return event.isAccepted();
    }

    /// Until a timer of more than the viewer's 1 ms, started now, has run out.
    void waitForTimers()
    {
        QTimer timer;
        timer.setSingleShot(true);
        QSignalSpy timeout(&timer, &QTimer::timeout);
        timer.start(5);
        QVERIFY(timeout.wait());
    }

    void noteMoves(QList<QPoint> &positions)
    {
        connect(viewer(), &QChartViewer::mouseMove, viewer(),
                [&positions](QMouseEvent *event) { positions << event->pos(); });
    }

    std::unique_ptr<ViewerFixture> m_fixture;
};

QTEST_MAIN(tst_QChartViewer_mouse)
#include "tst_QChartViewer_mouse.moc"
