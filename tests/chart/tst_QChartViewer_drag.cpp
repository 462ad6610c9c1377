#include "ViewerFixture.h"

Q_DECLARE_METATYPE(QMouseEvent *)
Q_DECLARE_METATYPE(QChartViewer::MouseUsage)

/// What the mouse does while a button is pressed.
class tst_QChartViewer_drag : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<QMouseEvent *>(); }

    void init() { m_fixture = std::make_unique<ViewerFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void inDefaultUsageNothingChanges()
    {
        QSignalSpy changed(viewer(), &QChartViewer::viewPortChanged);
        QCOMPARE(viewer()->mouseUsage(), QChartViewer::MouseUsage::Default);
        m_fixture->drag({100, 50}, {180, 60});
        QCOMPARE(changed.size(), 0);
        QCOMPARE(viewer()->viewPort(), QRectF(0, 0, 1, 1));
        QVERIFY(visibleEdges().isEmpty());
    }

    void clickedTellsOfAClick()
    {
        QSignalSpy clicked(viewer(), &QChartViewer::clicked);
        m_fixture->drag({100, 50}, {101, 50});
        QCOMPARE(clicked.size(), 1);
        m_fixture->drag({100, 50}, {150, 50});
        QCOMPARE(clicked.size(), 1);
        m_fixture->press({100, 50}, Qt::RightButton);
        m_fixture->release({100, 50}, Qt::RightButton);
        QCOMPARE(clicked.size(), 1);
    }

    void zoomsToTheDraggedRectangle()
    {
        viewer()->setMouseUsage(QChartViewer::MouseUsage::ZoomIn);
        QSignalSpy changed(viewer(), &QChartViewer::viewPortChanged);
        m_fixture->press({100, 50});
        m_fixture->moveTo({150, 60});
        const QList<QLabel *> edges = visibleEdges();
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
        m_fixture->release({150, 60});
        QCOMPARE(changed.size(), 1);
        QCOMPARE(viewer()->viewPort(), QRectF(0.25, 0, 0.25, 1));
        QVERIFY(visibleEdges().isEmpty());
    }

    void aDragBeyondThePlotAreaEndsAtItsEdge()
    {
        viewer()->setMouseUsage(QChartViewer::MouseUsage::ZoomIn);
        m_fixture->drag({200, 50}, {290, 140});
        QCOMPARE(viewer()->viewPort(), QRectF(0.75, 0, 0.25, 1));
    }

    void theSelectionsBorderCanBeChosen()
    {
        viewer()->setMouseUsage(QChartViewer::MouseUsage::ZoomIn);
        viewer()->setSelectionBorder(Qt::yellow, 3);
        m_fixture->press({100, 50});
        m_fixture->moveTo({150, 60});
        for (const QLabel *edge : visibleEdges()) {
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
        viewer()->setMouseUsage(QChartViewer::MouseUsage::ZoomIn);
        m_fixture->drag({100, 50}, to);
        QTEST(viewer()->viewPort(), "part");
    }

    void zoomsOutAtThePoint()
    {
        viewer()->setViewPort({0.4, 0, 0.2, 1});
        viewer()->setMouseUsage(QChartViewer::MouseUsage::ZoomOut);
        QSignalSpy changed(viewer(), &QChartViewer::viewPortChanged);
        m_fixture->drag({150, 50}, {150, 50});
        QCOMPARE(viewer()->viewPort(), QRectF(0.3, 0, 0.4, 1));
        QCOMPARE(changed.size(), 1);
    }

    void scrollingBeginsAfterTheMinimumDrag()
    {
        viewer()->setUpdateInterval(0);
        viewer()->setViewPort({0.4, 0, 0.2, 1});
        viewer()->setMouseUsage(QChartViewer::MouseUsage::Scroll);
        QList<bool> imageMapNeeded;
        connect(viewer(), &QChartViewer::viewPortChanged, this, [&] { imageMapNeeded << viewer()->needsImageMap(); });
        m_fixture->press({100, 50});
        m_fixture->moveTo({104, 50});
        QCOMPARE(viewer()->viewPort(), QRectF(0.4, 0, 0.2, 1));
        m_fixture->moveTo({120, 50});
        QCOMPARE(viewer()->viewPort(), QRectF(0.38, 0, 0.2, 1));
        m_fixture->moveTo({102, 50});
        QCOMPARE(viewer()->viewPort(), QRectF(0.398, 0, 0.2, 1));
        QCOMPARE(imageMapNeeded, QList<bool>({false, false}));
        m_fixture->release({102, 50});
        QCOMPARE(imageMapNeeded, QList<bool>({false, false, true}));
        QCOMPARE(viewer()->viewPort(), QRectF(0.398, 0, 0.2, 1));
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
        viewer()->setViewPort({0.4, 0, 0.2, 1});
        viewer()->setMouseUsage(usage);
        QSignalSpy changed(viewer(), &QChartViewer::viewPortChanged);
        m_fixture->drag({20, 50}, {120, 60});
        m_fixture->press({100, 50}, Qt::RightButton);
        m_fixture->moveTo({120, 60});
        m_fixture->release({120, 60}, Qt::RightButton);
        QCOMPARE(changed.size(), 0);
        QCOMPARE(viewer()->viewPort(), QRectF(0.4, 0, 0.2, 1));
    }

    void aKeptMoveBelongsToTheDragItWasMadeIn()
    {
        viewer()->setUpdateInterval(0);
        viewer()->setViewPort({0.4, 0, 0.2, 1});
        viewer()->setMouseUsage(QChartViewer::MouseUsage::Scroll);
        m_fixture->press({100, 50});
        m_fixture->moveTo({110, 50});
        m_fixture->move({120, 50});
        m_fixture->release({120, 50});
        QCOMPARE(viewer()->viewPort(), QRectF(0.38, 0, 0.2, 1));
    }

    void changingTheUsageEndsADrag()
    {
        viewer()->setMouseUsage(QChartViewer::MouseUsage::ZoomIn);
        m_fixture->press({100, 50});
        m_fixture->moveTo({150, 60});
        viewer()->setMouseUsage(QChartViewer::MouseUsage::Default);
        QVERIFY(visibleEdges().isEmpty());
        m_fixture->release({150, 60});
        QCOMPARE(viewer()->viewPort(), QRectF(0, 0, 1, 1));
    }

    void theCursorTellsTheUsage()
    {
        viewer()->setMouseUsage(QChartViewer::MouseUsage::Scroll);
        m_fixture->moveTo({100, 50});
        QCOMPARE(viewer()->cursor().shape(), Qt::OpenHandCursor);
        m_fixture->press({100, 50});
        QCOMPARE(viewer()->cursor().shape(), Qt::ClosedHandCursor);
        m_fixture->release({100, 50});
        viewer()->setMouseUsage(QChartViewer::MouseUsage::ZoomOut);
        QCOMPARE(viewer()->cursor().shape(), Qt::CrossCursor);
        m_fixture->moveTo({10, 10});
        QCOMPARE(viewer()->cursor().shape(), Qt::ArrowCursor);
    }

private:
    QChartViewer *viewer() const { return &m_fixture->viewer; }

    QList<QLabel *> visibleEdges() const
    {
        QList<QLabel *> edges;
        for (QLabel *label : viewer()->findChildren<QLabel *>()) {
            if (!label->isHidden())
                edges << label;
        }
        return edges;
    }

    std::unique_ptr<ViewerFixture> m_fixture;
};

QTEST_MAIN(tst_QChartViewer_drag)
#include "tst_QChartViewer_drag.moc"
