#include "ViewerFixture.h"

#include <QWindow>

namespace {

const QColor mark(0, 250, 0);

/// A viewer whose screen has the density that the test says.
class MovableViewer : public QChartViewer
{
public:
    using QChartViewer::QChartViewer;

    double density = 1;

protected:
    int metric(PaintDeviceMetric which) const override
    {
        if (which == PdmDevicePixelRatio)
            return qRound(density);
        if (which == PdmDevicePixelRatioScaled)
            return qRound(density * devicePixelRatioFScale());
        return QChartViewer::metric(which);
    }
};

} // namespace

class tst_QChartViewer : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<ViewerFixture>(); }
    void cleanup() { m_fixture.reset(); }

    // Charts

    void showsTheChartAtItsSize()
    {
        QCOMPARE(viewer()->chart(), m_fixture->chart.get());
        QCOMPARE(viewer()->size(), QSize(300, 150));
        QCOMPARE(viewer()->minimumSize(), viewer()->maximumSize());
        QCOMPARE(viewer()->plotArea(), QRect(50, 20, 200, 100));
        QCOMPARE(m_fixture->shown(), m_fixture->chart->picture(viewer()->devicePixelRatioF()));
        QVERIFY(viewer()->hasMouseTracking());
    }

    void thePictureCarriesTheScreensDensity()
    {
        const QPixmap pixmap = viewer()->pixmap(Qt::ReturnByValue);
        QCOMPARE(pixmap.devicePixelRatio(), viewer()->devicePixelRatioF());
        QCOMPARE(pixmap.size(), QSize(300, 150) * pixmap.devicePixelRatio());
    }

    void doesNotDeleteTheChartItHad()
    {
        const auto next = ViewerFixture::makeChart(Qt::blue, 200);
        viewer()->setChart(next.get());
        QCOMPARE(viewer()->chart(), next.get());
        QCOMPARE(viewer()->size(), QSize(200, 150));
        QCOMPARE(m_fixture->chart->size(), QSize(300, 150));
    }

    void noChartShowsNothing()
    {
        viewer()->setChart(nullptr);
        QCOMPARE(viewer()->chart(), nullptr);
        QVERIFY(viewer()->pixmap(Qt::ReturnByValue).isNull());
        viewer()->updateDisplay();
        viewer()->removeDynamicLayer("now");
        QVERIFY(viewer()->pixmap(Qt::ReturnByValue).isNull());
    }

    void updateDisplayShowsTheDynamicLayer()
    {
        m_fixture->chart->dynamicLayer().addDot({100, 50}, 4, mark);
        viewer()->updateDisplay();
        const qreal density = viewer()->devicePixelRatioF();
        QCOMPARE(m_fixture->shown().pixelColor(QPoint(100, 50) * density), mark);
    }

    void isDrawnAnewForAScreenOfAnotherDensity_data()
    {
        QTest::addColumn<double>("density");
        QTest::newRow("double") << 2.0;
        QTest::newRow("one and a quarter") << 1.25;
        QTest::newRow("single") << 1.0;
    }

    void isDrawnAnewForAScreenOfAnotherDensity()
    {
        QFETCH(double, density);
        QWidget window;
        MovableViewer moved(&window);
        moved.setChart(m_fixture->chart.get());
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        m_fixture->chart->dynamicLayer().addDot({100, 50}, 4, mark);
        moved.density = 3;
        moved.updateDisplay();

        // As when the window is dragged over.
        moved.density = density;
        emit window.windowHandle()->screenChanged(window.windowHandle()->screen());
        QTRY_COMPARE(moved.pixmap(Qt::ReturnByValue).devicePixelRatio(), density);
        QCOMPARE(moved.pixmap(Qt::ReturnByValue).toImage(), m_fixture->chart->picture(density));
        QCOMPARE(moved.size(), QSize(300, 150));
    }

    void aViewerWithoutAChartMovesToo()
    {
        QWidget window;
        MovableViewer moved(&window);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        moved.density = 2;
        moved.repaint();
        QVERIFY(moved.pixmap(Qt::ReturnByValue).isNull());
    }

    // View-port updates

    void updateEmitsAtOnce()
    {
        QSignalSpy changed(viewer(), &QChartViewer::viewPortChanged);
        bool neededChart = false;
        connect(viewer(), &QChartViewer::viewPortChanged, this,
                [&] { neededChart = viewer()->needsChart() && viewer()->needsImageMap(); });
        viewer()->updateViewPort(true, true);
        QCOMPARE(changed.size(), 1);
        QVERIFY(neededChart);
        QVERIFY(!viewer()->needsChart());
    }

    void updatesInQuickSuccessionAreHeldBack()
    {
        QSignalSpy changed(viewer(), &QChartViewer::viewPortChanged);
        viewer()->updateViewPort(true, true);
        viewer()->updateViewPort(true, false);
        viewer()->updateViewPort(false, true);
        QCOMPARE(changed.size(), 1);
        QVERIFY(viewer()->needsChart());
        QVERIFY(viewer()->needsImageMap());
        QVERIFY(changed.wait());
        QCOMPARE(changed.size(), 2);
        QVERIFY(!viewer()->needsChart());
        viewer()->updateViewPort(true, true);
        QCOMPARE(changed.size(), 2);
        QVERIFY(changed.wait());
        QCOMPARE(changed.size(), 3);
    }

    void aDisplayInBetweenDoesNotForgetWhatAHeldBackUpdateWasFor()
    {
        viewer()->updateViewPort(true, true);
        viewer()->updateViewPort(true, true);
        viewer()->updateDisplay();
        QVERIFY(viewer()->needsChart());
    }

    void withoutAnIntervalNothingIsHeldBack()
    {
        viewer()->setUpdateInterval(0);
        QSignalSpy changed(viewer(), &QChartViewer::viewPortChanged);
        viewer()->updateViewPort(true, true);
        viewer()->updateViewPort(true, true);
        QCOMPARE(changed.size(), 2);
    }

    void updatesInsideAnUpdateAreIgnored()
    {
        viewer()->setUpdateInterval(0);
        QSignalSpy changed(viewer(), &QChartViewer::viewPortChanged);
        connect(viewer(), &QChartViewer::viewPortChanged, viewer(), [this] { viewer()->updateViewPort(true, true); });
        viewer()->updateViewPort(true, true);
        QCOMPARE(changed.size(), 1);
    }

    void answersWithTheChartHandedOverDuringAnUpdate()
    {
        // A redraw inside a redraw, each deleting what the viewer says it has.
        const auto redraw = [this](const QColor &colour) {
            m_fixture->chart.reset();
            m_fixture->chart = ViewerFixture::makeChart(colour);
            viewer()->setChart(m_fixture->chart.get());
        };
        connect(viewer(), &QChartViewer::viewPortChanged, viewer(), [&] {
            redraw(Qt::blue);
            QCOMPARE(viewer()->chart(), m_fixture->chart.get());
            redraw(Qt::green);
            QCOMPARE(viewer()->chart(), m_fixture->chart.get());
        });
        viewer()->updateViewPort(true, true);
        QCOMPARE(viewer()->chart(), m_fixture->chart.get());
        QCOMPARE(m_fixture->shown().pixelColor(0, 0), QColor(Qt::green));
    }

    void theChartHandedOverIsShownWhenTheUpdateEnds()
    {
        const auto next = ViewerFixture::makeChart(Qt::blue, 200);
        QSize during;
        connect(viewer(), &QChartViewer::viewPortChanged, viewer(), [&] {
            viewer()->setChart(next.get());
            during = viewer()->size();
        });
        viewer()->updateViewPort(true, true);
        QCOMPARE(during, QSize(300, 150));
        QCOMPARE(viewer()->size(), QSize(200, 150));
        QCOMPARE(m_fixture->shown().pixelColor(0, 0), QColor(Qt::blue));
    }

    // The dynamic layer

    void aCursorNotTiedToThePlotAreaStaysUntilTheNextRedraw()
    {
        m_fixture->chart->dynamicLayer().addDot({100, 50}, 4, mark);
        m_fixture->moveTo({100, 50});
        m_fixture->moveTo({10, 10});
        m_fixture->leave();
        QVERIFY(!m_fixture->chart->dynamicLayer().isEmpty());
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
            if (!m_fixture->chart->dynamicLayer().isEmpty())
                presence << when;
            const bool visible = m_fixture->shown().pixelColor(QPoint(100, 50) * viewer()->devicePixelRatioF()) == mark;
            QCOMPARE(visible, !m_fixture->chart->dynamicLayer().isEmpty());
        };
        m_fixture->chart->dynamicLayer().addDot({100, 50}, 4, mark);
        viewer()->updateDisplay();
        m_fixture->moveTo({100, 50});
        viewer()->removeDynamicLayer(event);
        look("tied");
        m_fixture->moveTo({10, 10});
        look("plot area left");
        m_fixture->leave();
        look("chart left");
        QTEST(presence, "presence");
    }

    void leavingTheChartFromThePlotAreaCountsAsLeavingBoth()
    {
        m_fixture->chart->dynamicLayer().addDot({100, 50}, 4, mark);
        m_fixture->moveTo({100, 50});
        viewer()->removeDynamicLayer("mouseleaveplotarea");
        m_fixture->leave();
        QVERIFY(m_fixture->chart->dynamicLayer().isEmpty());
    }

private:
    QChartViewer *viewer() const { return &m_fixture->viewer; }

    std::unique_ptr<ViewerFixture> m_fixture;
};

QTEST_MAIN(tst_QChartViewer)
#include "tst_QChartViewer.moc"
