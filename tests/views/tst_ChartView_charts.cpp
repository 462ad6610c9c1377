#include "ChartViewFixture.h"
#include "chart/QChartViewerLabel.h"

#include <QSignalSpy>

class tst_ChartView_charts : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<ChartViewFixture>(); }
    void cleanup() { m_fixture.reset(); }

    // Charts

    void chartsFillTheirLabels()
    {
        m_fixture->show(QSize(1000, 500));
        const QSize room = m_fixture->widget("label_ch1_chart")->size();
        QCOMPARE(m_fixture->viewer(0)->chart()->size(), QSize(room.width() - 10, room.height()));
        QCOMPARE(m_fixture->viewer(0)->chart()->plotArea().area, QRect(45, 25, room.width() - 60, room.height() - 55));
        QCOMPARE(m_fixture->viewer(0)->pos(), QPoint(0, 0));
        QCOMPARE(m_fixture->viewer(0)->size(), m_fixture->viewer(0)->chart()->size());
        const QPixmap pixmap = m_fixture->viewer(0)->pixmap(Qt::ReturnByValue);
        QCOMPARE(pixmap.devicePixelRatio(), view().devicePixelRatioF());
        QCOMPARE(pixmap.size(), m_fixture->viewer(0)->size() * view().devicePixelRatioF());
    }

    void anEmptyViewShowsAnEmptyPlot()
    {
        m_fixture->show(QSize(810, 404));
        for (const int channel : {0, 1}) {
            QVERIFY(m_fixture->viewer(channel)->chart()->layers().empty());
            QVERIFY(!m_fixture->viewer(channel)->chart()->dynamicLayer().isEmpty());
        }
    }

    void eachReadingDrawsBothChartsAnew()
    {
        view().setDevice(&m_fixture->device());
        m_fixture->device().setChartView(&view());
        QSignalSpy changed1(m_fixture->viewer(0), &QChartViewer::viewPortChanged);
        QSignalSpy changed2(m_fixture->viewer(1), &QChartViewer::viewPortChanged);
        m_fixture->reply("21.50,45.10");
        QCOMPARE(changed1.size(), 1);
        QCOMPARE(changed2.size(), 1);
        QCOMPARE(m_fixture->newestShown(0), 21.5);
        QCOMPARE(m_fixture->newestShown(1), 45.1);
        QCOMPARE(m_fixture->viewer(0)->chart()->layers().front()->dataSets().front()->colour, QColor(255, 0, 0));
        QCOMPARE(m_fixture->viewer(1)->chart()->layers().front()->dataSets().front()->colour, QColor(0, 204, 0));
    }

    void theTimeAxisFollowsTheDataInterval()
    {
        m_fixture->showReading("21.50,45.10");
        const auto span = [this] {
            const auto range = m_fixture->viewer(0)->chart()->xAxis().range();
            return range ? range->high - range->low : -1;
        };
        QCOMPARE(span(), 2400.0);
        dataIntervalMs = 1000;
        view().updateChart();
        QCOMPARE(span(), 240.0);
    }

    void anOutageIsAGap()
    {
        m_fixture->attach();
        for (const int msLater : {10000, 10000, 10000, 600000, 10000, 10000})
            m_fixture->reply("21.50,45.10", msLater);
        m_fixture->show(QSize(810, 404));
        for (const int channel : {0, 1}) {
            chart::XYChart &picture = *m_fixture->viewer(channel)->chart();
            const chart::LineLayer &line = *picture.layers().front();
            const double newest = line.xValues().back();
            const QColor colour = line.dataSets().front()->colour;
            const int y = picture.yCoordinate(line.dataSets().front()->values.back()).value();
            const auto isDrawnAt = [&](double secondsAgo) {
                return picture.finishedPicture(1).pixelColor(picture.xCoordinate(newest - secondsAgo).value(), y) ==
                       colour;
            };
            QVERIFY(isDrawnAt(10));
            QVERIFY(!isDrawnAt(320));
            QVERIFY(isDrawnAt(630));
        }
    }

    void readingsOfAnEarlierIntervalStayJoined()
    {
        m_fixture->attach();
        for (int i = 0; i < 4; ++i)
            m_fixture->reply("21.50,45.10", 10000);
        dataIntervalMs = 1000;
        m_fixture->reply("21.50,45.10", 1000);
        m_fixture->show(QSize(810, 404));
        chart::XYChart &picture = *m_fixture->viewer(0)->chart();
        const double newest = picture.layers().front()->xValues().back();
        const int y = picture.yCoordinate(21.5).value();
        const int between = picture.xCoordinate(newest - 6).value();
        QCOMPARE(picture.finishedPicture(1).pixelColor(between, y), QColor(255, 0, 0));
        // Nor does another view of the same device tell otherwise.
        view().clear();
        view().setDevice(&m_fixture->device());
        chart::XYChart &again = *m_fixture->viewer(0)->chart();
        QCOMPARE(again.finishedPicture(1).pixelColor(between, y), QColor(255, 0, 0));
    }

    // The cursor

    void theCursorFollowsTheMouseOverTheFinishedPicture()
    {
        m_fixture->fillHistory();
        m_fixture->show(QSize(810, 404));
        const QImage atRest = shownWithout(0);
        const qint64 finished = m_fixture->viewer(0)->chart()->finishedPicture(view().devicePixelRatioF()).cacheKey();
        const QImage before = m_fixture->imageOf(m_fixture->viewer(0));
        m_fixture->moveTo(0, {150, 60});
        QVERIFY(m_fixture->imageOf(m_fixture->viewer(0)) != before);
        QCOMPARE(m_fixture->viewer(0)->chart()->finishedPicture(view().devicePixelRatioF()).cacheKey(), finished);
        QCOMPARE(shownWithout(0), atRest);
        // The other chart's cursor stays.
        m_fixture->moveTo(1, {300, 60});
        const QImage second = m_fixture->imageOf(m_fixture->viewer(1));
        m_fixture->moveTo(0, {200, 60});
        QCOMPARE(m_fixture->imageOf(m_fixture->viewer(1)), second);
    }

    void aRedrawKeepsTheCursorAtTheMouse()
    {
        m_fixture->fillHistory();
        m_fixture->show(QSize(810, 404));
        m_fixture->moveTo(0, {150, 60});
        const QImage tracked = m_fixture->imageOf(m_fixture->viewer(0));
        view().updateChart();
        QCOMPARE(m_fixture->imageOf(m_fixture->viewer(0)), tracked);
    }

    void afterTheMouseLeftTheNextRedrawPutsTheCursorAtTheNewestSample()
    {
        m_fixture->fillHistory();
        m_fixture->show(QSize(810, 404));
        const QImage atNewest = m_fixture->imageOf(m_fixture->viewer(0));
        m_fixture->moveTo(0, {150, 60});
        const QImage tracked = m_fixture->imageOf(m_fixture->viewer(0));
        m_fixture->moveTo(0, {20, 60});
        QCOMPARE(m_fixture->imageOf(m_fixture->viewer(0)), tracked);
        view().updateChart();
        QCOMPARE(m_fixture->imageOf(m_fixture->viewer(0)), atNewest);

        m_fixture->moveTo(0, {150, 60});
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(m_fixture->viewer(0), &leave);
        QCOMPARE(m_fixture->imageOf(m_fixture->viewer(0)), tracked);
        view().updateChart();
        QCOMPARE(m_fixture->imageOf(m_fixture->viewer(0)), atNewest);
    }

    void aMoveOverAnEmptyPlotIsHarmless()
    {
        m_fixture->show(QSize(810, 404));
        m_fixture->moveTo(0, {150, 60});
        m_fixture->moveTo(1, {150, 60});
        view().updateChart();
    }

    void aViewWithoutRoomIsHarmless()
    {
        m_fixture->fillHistory();
        auto *chartLabel = view().findChild<QChartViewerLabel *>("label_ch1_chart");
        chartLabel->setMinimumWidth(0);
        for (const QSize &size : {QSize(0, 0), QSize(60, 55), QSize(5, 300), QSize(300, 5)}) {
            chartLabel->resize(size);
            view().drawChart();
            m_fixture->moveTo(0, {0, 0});
            QVERIFY(m_fixture->viewer(0)->chart());
        }
    }

    void aNestedRedrawIsHarmless()
    {
        m_fixture->fillHistory();
        connect(m_fixture->viewer(0), &QChartViewer::viewPortChanged, &view(), &ChartView::drawChart);
        connect(m_fixture->viewer(0), &QChartViewer::viewPortChanged, &view(), &ChartView::updateChart);
        view().updateChart();
        QVERIFY(!m_fixture->viewer(0)->chart()->layers().empty());
    }

private:
    ChartView &view() const { return m_fixture->view; }

    QImage shownWithout(int channel) const
    {
        return m_fixture->viewer(channel)->chart()->finishedPicture(view().devicePixelRatioF());
    }

    std::unique_ptr<ChartViewFixture> m_fixture;
};

QTEST_MAIN(tst_ChartView_charts)
#include "tst_ChartView_charts.moc"
