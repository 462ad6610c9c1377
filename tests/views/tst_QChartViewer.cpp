#include "views/QChartViewer.h"
#include "views/chart/XYChart.h"

#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

Q_DECLARE_METATYPE(QMouseEvent *)
Q_DECLARE_METATYPE(QWheelEvent *)
Q_DECLARE_METATYPE(QChartViewer::MouseUsage)

namespace {

const QColor paper(10, 20, 30);
const QColor mark(0, 250, 0);

/// 300 x 150 with a plot area of 200 x 100 at (50, 20).
std::unique_ptr<chart::XYChart> makeChart(const QColor &background = paper, int width = 300)
{
    auto picture = std::make_unique<chart::XYChart>(width, 150, background);
    chart::PlotArea area;
    area.area = QRect(50, 20, 200, 100);
    picture->setPlotArea(area);
    return picture;
}

void send(QChartViewer &viewer, QEvent::Type type, const QPoint &at, Qt::MouseButton button = Qt::NoButton,
          Qt::MouseButtons buttons = Qt::NoButton)
{
    QMouseEvent event(type, at, at, viewer.mapToGlobal(at), button, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(&viewer, &event);
}

void press(QChartViewer &viewer, const QPoint &at, Qt::MouseButton button = Qt::LeftButton)
{
    send(viewer, QEvent::MouseButtonPress, at, button, button);
}

void release(QChartViewer &viewer, const QPoint &at, Qt::MouseButton button = Qt::LeftButton)
{
    send(viewer, QEvent::MouseButtonRelease, at, button);
}

void leave(QChartViewer &viewer)
{
    QEvent event(QEvent::Leave);
    QCoreApplication::sendEvent(&viewer, &event);
}

bool wheel(QWidget &widget)
{
    QWheelEvent event(QPointF(100, 50), widget.mapToGlobal(QPoint(100, 50)), QPoint(), QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
    return event.isAccepted();
}

QImage shown(const QChartViewer &viewer)
{
    return viewer.pixmap(Qt::ReturnByValue).toImage();
}

QList<QLabel *> visibleEdges(const QChartViewer &viewer)
{
    QList<QLabel *> edges;
    for (QLabel *label : viewer.findChildren<QLabel *>()) {
        if (!label->isHidden())
            edges << label;
    }
    return edges;
}

} // namespace

class tst_QChartViewer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qRegisterMetaType<QMouseEvent *>();
        qRegisterMetaType<QWheelEvent *>();
        qRegisterMetaType<QEvent *>();
    }

    void init()
    {
        m_now = 1000;
        m_viewer = std::make_unique<QChartViewer>();
        m_viewer->setClock([this] { return m_now; });
        m_chart = makeChart();
        m_viewer->setChart(m_chart.get());
    }

    void cleanup()
    {
        m_viewer.reset();
        m_chart.reset();
    }

    // Charts

    void showsTheChartAtItsSize()
    {
        QCOMPARE(m_viewer->chart(), m_chart.get());
        QCOMPARE(m_viewer->size(), QSize(300, 150));
        QCOMPARE(m_viewer->minimumSize(), m_viewer->maximumSize());
        QCOMPARE(m_viewer->plotArea(), QRect(50, 20, 200, 100));
        QCOMPARE(shown(*m_viewer), m_chart->picture(m_viewer->devicePixelRatioF()));
        QVERIFY(m_viewer->hasMouseTracking());
    }

    void thePictureCarriesTheScreensDensity()
    {
        const QPixmap pixmap = m_viewer->pixmap(Qt::ReturnByValue);
        QCOMPARE(pixmap.devicePixelRatio(), m_viewer->devicePixelRatioF());
        QCOMPARE(pixmap.size(), QSize(300, 150) * pixmap.devicePixelRatio());
    }

    void doesNotDeleteTheChartItHad()
    {
        const auto next = makeChart(Qt::blue, 200);
        m_viewer->setChart(next.get());
        QCOMPARE(m_viewer->chart(), next.get());
        QCOMPARE(m_viewer->size(), QSize(200, 150));
        QCOMPARE(m_chart->size(), QSize(300, 150));
    }

    void noChartShowsNothing()
    {
        m_viewer->setChart(nullptr);
        QCOMPARE(m_viewer->chart(), nullptr);
        QVERIFY(m_viewer->pixmap(Qt::ReturnByValue).isNull());
        m_viewer->updateDisplay();
        m_viewer->removeDynamicLayer("now");
        QVERIFY(m_viewer->pixmap(Qt::ReturnByValue).isNull());
    }

    void updateDisplayShowsTheDynamicLayer()
    {
        m_chart->dynamicLayer().addDot({100, 50}, 4, mark);
        m_viewer->updateDisplay();
        const qreal density = m_viewer->devicePixelRatioF();
        QCOMPARE(shown(*m_viewer).pixelColor(QPoint(100, 50) * density), mark);
    }

    // View-port updates

    void updateEmitsAtOnce()
    {
        QSignalSpy changed(m_viewer.get(), &QChartViewer::viewPortChanged);
        bool neededChart = false;
        connect(m_viewer.get(), &QChartViewer::viewPortChanged, this,
                [&] { neededChart = m_viewer->needsChart() && m_viewer->needsImageMap(); });
        m_viewer->updateViewPort(true, true);
        QCOMPARE(changed.size(), 1);
        QVERIFY(neededChart);
        QVERIFY(!m_viewer->needsChart());
    }

    void updatesInQuickSuccessionAreHeldBack()
    {
        QSignalSpy changed(m_viewer.get(), &QChartViewer::viewPortChanged);
        m_viewer->updateViewPort(true, true);
        m_viewer->updateViewPort(true, false);
        m_viewer->updateViewPort(false, true);
        QCOMPARE(changed.size(), 1);
        QVERIFY(m_viewer->needsChart());
        QVERIFY(m_viewer->needsImageMap());
        QVERIFY(changed.wait());
        QCOMPARE(changed.size(), 2);
        QVERIFY(!m_viewer->needsChart());
        m_viewer->updateViewPort(true, true);
        QCOMPARE(changed.size(), 2);
        QVERIFY(changed.wait());
        QCOMPARE(changed.size(), 3);
    }

    void aDisplayInBetweenDoesNotForgetWhatAHeldBackUpdateWasFor()
    {
        m_viewer->updateViewPort(true, true);
        m_viewer->updateViewPort(true, true);
        m_viewer->updateDisplay();
        QVERIFY(m_viewer->needsChart());
    }

    void withoutAnIntervalNothingIsHeldBack()
    {
        m_viewer->setUpdateInterval(0);
        QSignalSpy changed(m_viewer.get(), &QChartViewer::viewPortChanged);
        m_viewer->updateViewPort(true, true);
        m_viewer->updateViewPort(true, true);
        QCOMPARE(changed.size(), 2);
    }

    void updatesInsideAnUpdateAreIgnored()
    {
        m_viewer->setUpdateInterval(0);
        QSignalSpy changed(m_viewer.get(), &QChartViewer::viewPortChanged);
        connect(m_viewer.get(), &QChartViewer::viewPortChanged, m_viewer.get(),
                [this] { m_viewer->updateViewPort(true, true); });
        m_viewer->updateViewPort(true, true);
        QCOMPARE(changed.size(), 1);
    }

    void answersWithTheChartHandedOverDuringAnUpdate()
    {
        // A redraw inside a redraw, each deleting what the viewer says it has.
        const auto redraw = [this](const QColor &colour) {
            m_chart.reset();
            m_chart = makeChart(colour);
            m_viewer->setChart(m_chart.get());
        };
        connect(m_viewer.get(), &QChartViewer::viewPortChanged, m_viewer.get(), [&] {
            redraw(Qt::blue);
            QCOMPARE(m_viewer->chart(), m_chart.get());
            redraw(Qt::green);
            QCOMPARE(m_viewer->chart(), m_chart.get());
        });
        m_viewer->updateViewPort(true, true);
        QCOMPARE(m_viewer->chart(), m_chart.get());
        QCOMPARE(shown(*m_viewer).pixelColor(0, 0), QColor(Qt::green));
    }

    void theChartHandedOverIsShownWhenTheUpdateEnds()
    {
        const auto next = makeChart(Qt::blue, 200);
        QSize during;
        connect(m_viewer.get(), &QChartViewer::viewPortChanged, m_viewer.get(), [&] {
            m_viewer->setChart(next.get());
            during = m_viewer->size();
        });
        m_viewer->updateViewPort(true, true);
        QCOMPARE(during, QSize(300, 150));
        QCOMPARE(m_viewer->size(), QSize(200, 150));
        QCOMPARE(shown(*m_viewer).pixelColor(0, 0), QColor(Qt::blue));
    }

    // Where the mouse is

    void knowsWhetherTheMouseIsOnThePlotArea()
    {
        QVERIFY(!m_viewer->isMouseOnPlotArea());
        moveTo({100, 50});
        QVERIFY(m_viewer->isMouseOnPlotArea());
        moveTo({20, 50});
        QVERIFY(!m_viewer->isMouseOnPlotArea());
        m_viewer->setMouseMargins({40, 0, 0, 0});
        QVERIFY(m_viewer->isMouseOnPlotArea());
        leave(*m_viewer);
        QVERIFY(!m_viewer->isMouseOnPlotArea());
        moveTo({100, 50});
        QVERIFY(m_viewer->isMouseOnPlotArea());
    }

    void plotAreaMouseXStaysWithinThePlotArea()
    {
        moveTo({100, 50});
        QCOMPARE(m_viewer->plotAreaMouseX(), 100);
        moveTo({10, 50});
        QCOMPARE(m_viewer->plotAreaMouseX(), 50);
        moveTo({290, 50});
        QCOMPARE(m_viewer->plotAreaMouseX(), 250);
    }

    void signalsOfMovesAndLeaves()
    {
        QStringList calls;
        connect(m_viewer.get(), &QChartViewer::mouseMove, this, [&] { calls << "move"; });
        connect(m_viewer.get(), &QChartViewer::mouseMoveChart, this, [&] { calls << "chart"; });
        connect(m_viewer.get(), &QChartViewer::mouseLeaveChart, this, [&] { calls << "leave chart"; });
        connect(m_viewer.get(), &QChartViewer::mouseMovePlotArea, this, [&] { calls << "plot"; });
        connect(m_viewer.get(), &QChartViewer::mouseLeavePlotArea, this, [&] { calls << "leave plot"; });
        const auto callsOf = [&](auto &&action) {
            calls.clear();
            action();
            return calls;
        };
        QCOMPARE(callsOf([&] { moveTo({10, 10}); }), QStringList({"move", "chart"}));
        QCOMPARE(callsOf([&] { moveTo({100, 50}); }), QStringList({"move", "plot", "chart"}));
        QCOMPARE(callsOf([&] { moveTo({10, 10}); }), QStringList({"move", "leave plot", "chart"}));
        QCOMPARE(callsOf([&] { moveTo({11, 10}); }), QStringList({"move", "chart"}));
        QCOMPARE(callsOf([&] { leave(*m_viewer); }), QStringList({"leave chart"}));
        moveTo({100, 50});
        QCOMPARE(callsOf([&] { leave(*m_viewer); }), QStringList({"leave plot", "leave chart"}));
    }

    // Mouse moves in quick succession

    void ofTenRapidMovesTheFirstAndTheLastAreHandled()
    {
        QList<QPoint> handled;
        noteMoves(handled);
        for (int i = 0; i < 10; ++i) {
            send(*m_viewer, QEvent::MouseMove, {100 + i, 50});
            ++m_now;
        }
        QCOMPARE(handled, QList<QPoint>({{100, 50}}));
        QTRY_COMPARE(handled, QList<QPoint>({{100, 50}, {109, 50}}));
    }

    void aMoveAfterTenMillisecondsIsHandledAtOnce()
    {
        QList<QPoint> handled;
        noteMoves(handled);
        send(*m_viewer, QEvent::MouseMove, {100, 50});
        m_now += 9;
        send(*m_viewer, QEvent::MouseMove, {101, 50});
        QCOMPARE(handled.size(), 1);
        m_now += 1;
        QTRY_COMPARE(handled.size(), 2);
        m_now += 10;
        send(*m_viewer, QEvent::MouseMove, {102, 50});
        QCOMPARE(handled.size(), 3);
    }

    void whileAMoveIsKeptNewOnesReplaceIt()
    {
        QList<QPoint> handled;
        noteMoves(handled);
        send(*m_viewer, QEvent::MouseMove, {100, 50});
        send(*m_viewer, QEvent::MouseMove, {101, 50});
        m_now += 20;
        send(*m_viewer, QEvent::MouseMove, {102, 50});
        QCOMPARE(handled.size(), 1);
        // The kept one needs no more than the 10 ms, which are over; nothing here moves the clock on.
        QTRY_COMPARE(handled, QList<QPoint>({{100, 50}, {102, 50}}));
    }

    void afterAQuarterSecondANewMoveOvertakesAKeptOne()
    {
        QList<QPoint> handled;
        noteMoves(handled);
        send(*m_viewer, QEvent::MouseMove, {100, 50});
        send(*m_viewer, QEvent::MouseMove, {101, 50});
        m_now += 250;
        send(*m_viewer, QEvent::MouseMove, {102, 50});
        QCOMPARE(handled, QList<QPoint>({{100, 50}, {102, 50}}));
        // The older position does not come after the newer one.
        m_now += 20;
        waitForTimers();
        QCOMPARE(handled.size(), 2);
    }

    void aKeptMoveIsForgottenWhenTheMouseLeaves()
    {
        moveTo({100, 50});
        send(*m_viewer, QEvent::MouseMove, {101, 50});
        leave(*m_viewer);
        QSignalSpy moved(m_viewer.get(), &QChartViewer::mouseMove);
        m_now += 20;
        waitForTimers();
        QCOMPARE(moved.size(), 0);
        QVERIFY(!m_viewer->isMouseOnPlotArea());
    }

    // The dynamic layer

    void aCursorNotTiedToThePlotAreaStaysUntilTheNextRedraw()
    {
        m_chart->dynamicLayer().addDot({100, 50}, 4, mark);
        moveTo({100, 50});
        moveTo({10, 10});
        leave(*m_viewer);
        QVERIFY(!m_chart->dynamicLayer().isEmpty());
    }

    void aDynamicLayerGoesAtTheEventItIsTiedTo_data()
    {
        QTest::addColumn<QString>("event");
        QTest::addColumn<QStringList>("presence");
        const QStringList none;
        QTest::newRow("now") << "NOW" << none;
        QTest::newRow("plot area") << "MouseLeavePlotArea" << QStringList({"tied"});
        QTest::newRow("chart") << "mouseleavechart" << QStringList({"tied", "plot area left"});
        QTest::newRow("another event") << "sunset" << QStringList({"tied", "plot area left", "chart left"});
    }

    void aDynamicLayerGoesAtTheEventItIsTiedTo()
    {
        QFETCH(QString, event);
        QStringList presence;
        const auto look = [&](const QString &when) {
            if (!m_chart->dynamicLayer().isEmpty())
                presence << when;
            const bool visible = shown(*m_viewer).pixelColor(QPoint(100, 50) * m_viewer->devicePixelRatioF()) == mark;
            QCOMPARE(visible, !m_chart->dynamicLayer().isEmpty());
        };
        m_chart->dynamicLayer().addDot({100, 50}, 4, mark);
        m_viewer->updateDisplay();
        moveTo({100, 50});
        m_viewer->removeDynamicLayer(event);
        look("tied");
        moveTo({10, 10});
        look("plot area left");
        leave(*m_viewer);
        look("chart left");
        QTEST(presence, "presence");
    }

    void leavingTheChartFromThePlotAreaCountsAsLeavingBoth()
    {
        m_chart->dynamicLayer().addDot({100, 50}, 4, mark);
        moveTo({100, 50});
        m_viewer->removeDynamicLayer("mouseleaveplotarea");
        leave(*m_viewer);
        QVERIFY(m_chart->dynamicLayer().isEmpty());
    }

    // Press, drag and release

    void inDefaultUsageNothingChanges()
    {
        QSignalSpy changed(m_viewer.get(), &QChartViewer::viewPortChanged);
        QCOMPARE(m_viewer->mouseUsage(), QChartViewer::MouseUsage::Default);
        drag({100, 50}, {180, 60});
        QCOMPARE(changed.size(), 0);
        QCOMPARE(m_viewer->viewPort(), QRectF(0, 0, 1, 1));
        QVERIFY(visibleEdges(*m_viewer).isEmpty());
    }

    void clickedTellsOfAClick()
    {
        QSignalSpy clicked(m_viewer.get(), &QChartViewer::clicked);
        drag({100, 50}, {101, 50});
        QCOMPARE(clicked.size(), 1);
        drag({100, 50}, {150, 50});
        QCOMPARE(clicked.size(), 1);
        press(*m_viewer, {100, 50}, Qt::RightButton);
        release(*m_viewer, {100, 50}, Qt::RightButton);
        QCOMPARE(clicked.size(), 1);
    }

    void zoomsToTheDraggedRectangle()
    {
        m_viewer->setMouseUsage(QChartViewer::MouseUsage::ZoomIn);
        QSignalSpy changed(m_viewer.get(), &QChartViewer::viewPortChanged);
        press(*m_viewer, {100, 50});
        moveTo({150, 60});
        const QList<QLabel *> edges = visibleEdges(*m_viewer);
        QCOMPARE(edges.size(), 4);
        QRect frame;
        for (const QLabel *edge : edges) {
            frame |= edge->geometry();
            QVERIFY(edge->autoFillBackground());
            QCOMPARE(edge->palette().color(QPalette::Window), QColor(Qt::black));
            QCOMPARE(qMin(edge->width(), edge->height()), 2);
        }
        QCOMPARE(frame, QRect(100, 20, 50, 100));
        QCOMPARE(changed.size(), 0);
        release(*m_viewer, {150, 60});
        QCOMPARE(changed.size(), 1);
        QCOMPARE(m_viewer->viewPort(), QRectF(0.25, 0, 0.25, 1));
        QVERIFY(visibleEdges(*m_viewer).isEmpty());
    }

    void aDragBeyondThePlotAreaEndsAtItsEdge()
    {
        m_viewer->setMouseUsage(QChartViewer::MouseUsage::ZoomIn);
        drag({200, 50}, {290, 140});
        QCOMPARE(m_viewer->viewPort(), QRectF(0.75, 0, 0.25, 1));
    }

    void theSelectionsBorderCanBeChosen()
    {
        m_viewer->setMouseUsage(QChartViewer::MouseUsage::ZoomIn);
        m_viewer->setSelectionBorder(Qt::yellow, 3);
        press(*m_viewer, {100, 50});
        moveTo({150, 60});
        for (const QLabel *edge : visibleEdges(*m_viewer)) {
            QCOMPARE(edge->palette().color(QPalette::Window), QColor(Qt::yellow));
            QCOMPARE(qMin(edge->width(), edge->height()), 3);
        }
    }

    void aShortDragZoomsAtThePoint_data()
    {
        QTest::addColumn<QPoint>("to");
        QTest::addColumn<QRectF>("part");
        QTest::newRow("click") << QPoint(100, 50) << QRectF(0.125, 0, 0.5, 1);
        QTest::newRow("4 pixels") << QPoint(104, 50) << QRectF(0.125, 0, 0.5, 1);
        QTest::newRow("far, but not in the direction that counts") << QPoint(104, 100) << QRectF(0.125, 0, 0.5, 1);
        QTest::newRow("5 pixels") << QPoint(105, 50) << QRectF(0.25, 0, 0.025, 1);
    }

    void aShortDragZoomsAtThePoint()
    {
        QFETCH(QPoint, to);
        m_viewer->setMouseUsage(QChartViewer::MouseUsage::ZoomIn);
        drag({100, 50}, to);
        QTEST(m_viewer->viewPort(), "part");
    }

    void zoomsOutAtThePoint()
    {
        m_viewer->setViewPort({0.4, 0, 0.2, 1});
        m_viewer->setMouseUsage(QChartViewer::MouseUsage::ZoomOut);
        QSignalSpy changed(m_viewer.get(), &QChartViewer::viewPortChanged);
        drag({150, 50}, {150, 50});
        QCOMPARE(m_viewer->viewPort(), QRectF(0.3, 0, 0.4, 1));
        QCOMPARE(changed.size(), 1);
    }

    void scrollingBeginsAfterTheMinimumDrag()
    {
        m_viewer->setUpdateInterval(0);
        m_viewer->setViewPort({0.4, 0, 0.2, 1});
        m_viewer->setMouseUsage(QChartViewer::MouseUsage::Scroll);
        QList<bool> imageMapNeeded;
        connect(m_viewer.get(), &QChartViewer::viewPortChanged, this,
                [&] { imageMapNeeded << m_viewer->needsImageMap(); });
        press(*m_viewer, {100, 50});
        moveTo({104, 50});
        QCOMPARE(m_viewer->viewPort(), QRectF(0.4, 0, 0.2, 1));
        moveTo({120, 50});
        QCOMPARE(m_viewer->viewPort(), QRectF(0.38, 0, 0.2, 1));
        moveTo({102, 50});
        QCOMPARE(m_viewer->viewPort(), QRectF(0.398, 0, 0.2, 1));
        QCOMPARE(imageMapNeeded, QList<bool>({false, false}));
        release(*m_viewer, {102, 50});
        QCOMPARE(imageMapNeeded, QList<bool>({false, false, true}));
        QCOMPARE(m_viewer->viewPort(), QRectF(0.398, 0, 0.2, 1));
    }

    void aDragThatBeginsOutsideThePlotAreaIsNone_data()
    {
        QTest::addColumn<QChartViewer::MouseUsage>("usage");
        QTest::newRow("scroll") << QChartViewer::MouseUsage::Scroll;
        QTest::newRow("zoom in") << QChartViewer::MouseUsage::ZoomIn;
        QTest::newRow("zoom out") << QChartViewer::MouseUsage::ZoomOut;
    }

    void aDragThatBeginsOutsideThePlotAreaIsNone()
    {
        QFETCH(QChartViewer::MouseUsage, usage);
        m_viewer->setViewPort({0.4, 0, 0.2, 1});
        m_viewer->setMouseUsage(usage);
        QSignalSpy changed(m_viewer.get(), &QChartViewer::viewPortChanged);
        drag({20, 50}, {120, 60});
        press(*m_viewer, {100, 50}, Qt::RightButton);
        moveTo({120, 60});
        release(*m_viewer, {120, 60}, Qt::RightButton);
        QCOMPARE(changed.size(), 0);
        QCOMPARE(m_viewer->viewPort(), QRectF(0.4, 0, 0.2, 1));
    }

    void aKeptMoveBelongsToTheDragItWasMadeIn()
    {
        m_viewer->setUpdateInterval(0);
        m_viewer->setViewPort({0.4, 0, 0.2, 1});
        m_viewer->setMouseUsage(QChartViewer::MouseUsage::Scroll);
        press(*m_viewer, {100, 50});
        moveTo({110, 50});
        send(*m_viewer, QEvent::MouseMove, {120, 50});
        release(*m_viewer, {120, 50});
        QCOMPARE(m_viewer->viewPort(), QRectF(0.38, 0, 0.2, 1));
    }

    void changingTheUsageEndsADrag()
    {
        m_viewer->setMouseUsage(QChartViewer::MouseUsage::ZoomIn);
        press(*m_viewer, {100, 50});
        moveTo({150, 60});
        m_viewer->setMouseUsage(QChartViewer::MouseUsage::Default);
        QVERIFY(visibleEdges(*m_viewer).isEmpty());
        release(*m_viewer, {150, 60});
        QCOMPARE(m_viewer->viewPort(), QRectF(0, 0, 1, 1));
    }

    void theCursorTellsTheUsage()
    {
        m_viewer->setMouseUsage(QChartViewer::MouseUsage::Scroll);
        moveTo({100, 50});
        QCOMPARE(m_viewer->cursor().shape(), Qt::OpenHandCursor);
        press(*m_viewer, {100, 50});
        QCOMPARE(m_viewer->cursor().shape(), Qt::ClosedHandCursor);
        release(*m_viewer, {100, 50});
        m_viewer->setMouseUsage(QChartViewer::MouseUsage::ZoomOut);
        QCOMPARE(m_viewer->cursor().shape(), Qt::CrossCursor);
        moveTo({10, 10});
        QCOMPARE(m_viewer->cursor().shape(), Qt::ArrowCursor);
    }

    // The wheel

    void wheelEventsArePassedOnOnlyToThoseWhoListen()
    {
        QVERIFY(!wheel(*m_viewer));
        QSignalSpy turned(m_viewer.get(), &QChartViewer::mouseWheel);
        QVERIFY(wheel(*m_viewer));
        QCOMPARE(turned.size(), 1);
    }

    void aWheelHandlerCanZoomAtTheMouse()
    {
        connect(m_viewer.get(), &QChartViewer::mouseWheel, this, [this](QWheelEvent *event) {
            if (m_viewer->zoomAt(event->position().toPoint(), 2))
                m_viewer->updateViewPort(true, false);
        });
        wheel(*m_viewer);
        QCOMPARE(m_viewer->viewPort(), QRectF(0.125, 0, 0.5, 1));
    }

private:
    /// Moves late enough after the last move to be handled at once.
    void moveTo(const QPoint &position)
    {
        m_now += 300;
        send(*m_viewer, QEvent::MouseMove, position);
    }

    void drag(const QPoint &from, const QPoint &to)
    {
        press(*m_viewer, from);
        moveTo(to);
        release(*m_viewer, to);
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
        connect(m_viewer.get(), &QChartViewer::mouseMove, this,
                [&positions](QMouseEvent *event) { positions << event->pos(); });
    }

    qint64 m_now = 0;
    std::unique_ptr<QChartViewer> m_viewer;
    std::unique_ptr<chart::XYChart> m_chart;
};

QTEST_MAIN(tst_QChartViewer)
#include "tst_QChartViewer.moc"
