#include "support/ClockedDevice.h"
#include "support/TemporaryInterval.h"
#include "views/ChartView.h"
#include "views/QChartViewer.h"
#include "views/QChartViewerLabel.h"
#include "views/ResizeLabel.h"
#include "views/chart/NoValue.h"
#include "views/chart/XYChart.h"

#include <QFrame>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {

const QString grey = QStringLiteral("background-color: qlineargradient(spread:pad, x1:0.372222, y1:0.46, x2:1, y2:1, "
                                    "stop:0 rgba(80, 80, 80, 255), stop:1 rgba(125, 125, 125, 255));");
const QString teal = QStringLiteral("background-color: qlineargradient(spread:pad, x1:0.372222, y1:0.46, x2:1, y2:1, "
                                    "stop:0 rgba(24, 68, 76, 255), stop:1 rgba(43, 132, 130, 255));");
const QString red = QStringLiteral("background-color: qlineargradient(spread:pad, x1:0.372222, y1:0.46, x2:1, y2:1, "
                                   "stop:0 rgba(145, 27, 66, 255), stop:1 rgba(181, 69, 96, 255));");

QImage imageOf(const QLabel *label)
{
    return label->pixmap(Qt::ReturnByValue).toImage();
}

/// A picture of the resources, at whatever density the screen asks for.
bool shows(const QLabel *label, const char *name)
{
    const QString base = QStringLiteral(":/img/") + QLatin1String(name);
    const QImage image = imageOf(label);
    return !image.isNull() &&
           (image == QPixmap(base + ".png").toImage() || image == QPixmap(base + "@2x.png").toImage());
}

/// Counts how often a style sheet was polished anew.
class StyleChanges : public QObject
{
public:
    explicit StyleChanges(QWidget *watched) : QObject(watched) { watched->installEventFilter(this); }
    int count = 0;

    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::StyleChange ? 1 : 0;
        return false;
    }
};

} // namespace

class tst_ChartView : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_interval = std::make_unique<TemporaryInterval>(10000);
        m_clocked = std::make_unique<ClockedDevice>();
        device().setDeviceInfo("Cold room", "Air", "Damp", "10.0.0.7", 23);
        device().setUnits(1, 3);
        device().setAlarmRange(2, 8, 0, 0);
        m_usb = std::make_unique<ConfiguredDevice>("12345678", UsbInterface);
        m_view = std::make_unique<ChartView>();
        m_now = 0;
        for (QChartViewer *viewer : viewers()) {
            viewer->setUpdateInterval(0);
            viewer->setClock([this] { return m_now; });
        }
    }

    void cleanup()
    {
        if (m_clocked)
            device().detachViews();
        m_view.reset();
        m_usb.reset();
        m_clocked.reset();
        m_interval.reset();
    }

    // The form

    void formIsAsDesigned()
    {
        QCOMPARE(m_view->objectName(), QString("ChartView"));
        QCOMPARE(m_view->size(), QSize(810, 404));
        QCOMPARE(m_view->windowTitle(), QString("Form"));
        QVERIFY(!m_view->windowIcon().isNull());
        QCOMPARE(m_view->styleSheet(), QString("QToolTip { color: rgb(230,230,230); background-color: rgb(12, 12, 12); "
                                               "border: #996633; }"));
        QCOMPARE(widget("topFrame")->maximumHeight(), 70);
        for (const char *name : {"frame_device", "frame_serial"}) {
            QCOMPARE(widget(name)->minimumSize(), QSize(200, 25));
            QCOMPARE(widget(name)->maximumSize(), QSize(428, 25));
        }
        for (const char *name : {"frame_channel1", "frame_channel2"}) {
            QCOMPARE(widget(name)->minimumSize(), QSize(200, 123));
            QCOMPARE(widget(name)->maximumWidth(), 300);
        }
        QCOMPARE(widget("label_ch1_chart")->minimumWidth(), 584);
        QCOMPARE(widget("label_ch2_chart")->minimumWidth(), 584);
        QCOMPARE(button("btn_network")->text(), QString("Network Info."));
        QCOMPARE(button("btn_network")->toolTip(), QString("Network Information"));
        QVERIFY(!button("btn_network")->icon().isNull());
        QCOMPARE(button("btn_setting")->text(), QString("Option"));
        QCOMPARE(button("btn_setting")->toolTip(), QString("Modify Options"));
        QCOMPARE(label("label_device")->font().pointSize(), 10);
        QVERIFY(shows(label("label_device_type"), "DeviceImg"));
        QVERIFY(button("btn_network")->isHidden());
        QVERIFY(m_view->findChild<ResizeLabel *>("label_ch1_number"));
        QVERIFY(m_view->findChild<ResizeLabel *>("label_ch2_number"));
        QVERIFY(m_view->findChild<ResizeLabelUnit *>("label_ch1_unit"));
        QVERIFY(m_view->findChild<ResizeLabelUnit *>("label_ch2_unit"));
    }

    void nothingOverlapsAndNothingIsCutOff_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("first size") << QSize(810, 404);
        QTest::newRow("1920 x 1080 beside the list") << QSize(1720, 900);
    }

    void nothingOverlapsAndNothingIsCutOff()
    {
        QFETCH(QSize, size);
        device().setDeviceInfo(QString(40, 'W'), QString(40, 'W'), QString(40, 'W'), "10.0.0.7", 23);
        m_view->setDevice(&device());
        show(size);
        QCOMPARE(m_view->size(), size);
        const QList<const char *> names{"frame_device",   "frame_serial",    "frame_channel1",
                                        "frame_channel2", "label_ch1_chart", "label_ch2_chart"};
        for (const char *a : names) {
            QVERIFY(m_view->rect().contains(placeOf(a)));
            for (const char *b : names)
                QVERIFY(a == b || !placeOf(a).intersects(placeOf(b)));
        }
        QVERIFY(placeOf("frame_ch1_label").width() == 47 && placeOf("frame_ch2_label").width() == 47);
        for (const char *name : {"frame_ch1_description", "frame_ch2_description"})
            QVERIFY(widget(name)->height() >= 53 && widget(name)->height() <= 60);
        for (const char *name : {"btn_network", "btn_setting"})
            QVERIFY(widget(name)->width() >= widget(name)->sizeHint().width());
        QVERIFY(!placeOf("label_device").intersects(placeOf("btn_network")));
        QCOMPARE(widget("label_ch1_unit")->height(), 30);
    }

    void aGrownViewCanShrinkAgain()
    {
        m_view->setDevice(&device());
        device().setChartView(m_view.get());
        device().readData("21.50,45.10");
        show(QSize(1720, 900));
        QTRY_COMPARE(viewer(0)->width(), widget("label_ch1_chart")->width() - 10);
        m_view->resize(810, 404);
        QTRY_COMPARE(m_view->size(), QSize(810, 404));
        QTRY_COMPARE(viewer(0)->width(), widget("label_ch1_chart")->width() - 10);
        QCOMPARE(viewer(0)->height(), widget("label_ch1_chart")->height());
    }

    // The header

    void aNetworkDeviceShowsItsMacAndTheNetworkButton()
    {
        m_view->setDevice(&device());
        QVERIFY(!button("btn_network")->isHidden());
        QCOMPARE(label("label_serialnumber")->text(), QString("MAC : A1"));
        QVERIFY(shows(label("label_device_type"), "icon_lan"));
    }

    void aUsbDeviceShowsItsSerialNumber()
    {
        m_view->setDevice(&device());
        m_view->clear();
        QVERIFY(button("btn_network")->isHidden());
        m_view->setDevice(m_usb.get());
        QVERIFY(button("btn_network")->isHidden());
        QCOMPARE(label("label_serialnumber")->text(), QString("SN : 12345678"));
        QVERIFY(shows(label("label_device_type"), "icon_usb"));
    }

    void namesFallBack()
    {
        m_view->setDevice(&device());
        for (const char *name : {"label_device", "label_ch1_device", "label_ch2_device"})
            QCOMPARE(label(name)->text(), QString("Cold room"));
        QCOMPARE(label("label_ch1_desc")->text(), QString("Air"));
        QCOMPARE(label("label_ch2_desc")->text(), QString("Damp"));
        device().setDeviceInfo({}, {}, {}, "10.0.0.7", 23);
        m_view->refreshHeader();
        for (const char *name : {"label_device", "label_ch1_device", "label_ch2_device"})
            QCOMPARE(label(name)->text(), QString("10.0.0.7"));
        QCOMPARE(label("label_ch1_desc")->text(), QString("CH1"));
        QCOMPARE(label("label_ch2_desc")->text(), QString("CH2"));
    }

    void namesArePlainText()
    {
        const QString name = "<b>Cold & room</b>";
        device().setDeviceInfo(name, name, name, "10.0.0.7", 23);
        m_view->setDevice(&device());
        for (const char *object : {"label_device", "label_ch1_device", "label_ch1_desc", "label_ch2_device",
                                   "label_ch2_desc", "label_serialnumber"})
            QCOMPARE(label(object)->textFormat(), Qt::PlainText);
        QCOMPARE(label("label_device")->text(), name);
        QVERIFY(!label("label_device")->toolTip().contains("<b>"));
    }

    void longNamesAreElidedWithTheWholeInTheToolTip()
    {
        const QString name = "A cold room with a name of forty letters";
        device().setDeviceInfo(name, name, name, "10.0.0.7", 23);
        m_view->setDevice(&device());
        show(QSize(810, 404));
        for (const char *object : {"label_device", "label_ch1_device", "label_ch1_desc"}) {
            QCOMPARE(label(object)->text(), name);
            QVERIFY(label(object)->toolTip().contains(name));
            QVERIFY(label(object)->width() < label(object)->fontMetrics().horizontalAdvance(name));
        }
    }

    void buttonsAsk()
    {
        m_view->setDevice(&device());
        QSignalSpy option(m_view.get(), &ChartView::popupSensingOption);
        QSignalSpy network(m_view.get(), &ChartView::popupNetworkSetting);
        button("btn_setting")->click();
        QCOMPARE(option.size(), 1);
        QCOMPARE(network.size(), 0);
        button("btn_network")->click();
        QCOMPARE(network.size(), 1);
    }

    // State and values

    void showsWhatTheDeviceKnows()
    {
        device().readData("5.00,45.10");
        m_view->setDevice(&device());
        QCOMPARE(label("label_ch1_number")->text(), QString("5.00"));
        QCOMPARE(label("label_ch2_number")->text(), QString("45.10"));
        QCOMPARE(label("label_ch1_unit")->text(), QStringLiteral("\u00B0C"));
        QCOMPARE(label("label_ch2_unit")->text(), QString("%RH"));
        QVERIFY(shows(label("label_device_status"), "DeviceConnectingSymbol"));
        QTRY_COMPARE(widget("frame_ch1_value")->styleSheet(), teal);
        QCOMPARE(newestShown(0), 5.0);
        QCOMPARE(newestShown(1), 45.1);
    }

    void connectingShowsTheConnectingSymbol()
    {
        m_view->setDevice(&device());
        QVERIFY(shows(label("label_device_status"), "DeviceDisconnectedSymbol"));
        QCOMPARE(widget("frame_ch1_value")->styleSheet(), grey);
        m_view->setConnected("A1");
        QVERIFY(shows(label("label_device_status"), "DeviceConnectingSymbol"));
        QVERIFY(!shows(label("label_device_status"), "DeviceConnectedSymbol"));
        QTRY_COMPARE(widget("frame_ch1_value")->styleSheet(), teal);
        QCOMPARE(widget("frame_ch2_value")->styleSheet(), teal);
    }

    void losingTheDeviceBlanksTheValues()
    {
        showReading("9.00,45.10");
        QTRY_COMPARE(widget("frame_ch1_value")->styleSheet(), red);
        device().deviceDisconnected();
        QVERIFY(shows(label("label_device_status"), "DeviceDisconnectedSymbol"));
        for (const char *name : {"label_ch1_number", "label_ch1_unit", "label_ch2_number", "label_ch2_unit"})
            QCOMPARE(label(name)->text(), QString());
        QTRY_COMPARE(widget("frame_ch1_value")->styleSheet(), grey);
        QCOMPARE(widget("frame_ch2_value")->styleSheet(), grey);
        // The history stays on the chart.
        QCOMPARE(newestShown(0), 9.0);
    }

    void noticesForOthersChangeNothing()
    {
        m_view->setConnected("A1");
        QVERIFY(shows(label("label_device_status"), "DeviceDisconnectedSymbol"));
        showReading("5.00,45.10");
        m_view->setDisconnected("B2");
        QVERIFY(shows(label("label_device_status"), "DeviceConnectingSymbol"));
        QCOMPARE(label("label_ch1_number")->text(), QString("5.00"));
        device().deviceDisconnected();
        m_view->setConnected("B2");
        QVERIFY(shows(label("label_device_status"), "DeviceDisconnectedSymbol"));
    }

    void alarmsAreRedByChannel()
    {
        showReading("9.00,45.10");
        QTRY_COMPARE(widget("frame_ch1_value")->styleSheet(), red);
        QCOMPARE(widget("frame_ch2_value")->styleSheet(), teal);
        device().readData("5.00,45.10");
        QTRY_COMPARE(widget("frame_ch1_value")->styleSheet(), teal);
    }

    void anAlarmingChannelIsNotPaintedTealInBetween()
    {
        showReading("9.00,45.10");
        QTRY_COMPARE(widget("frame_ch1_value")->styleSheet(), red);
        StyleChanges changes(widget("frame_ch1_value"));
        for (int i = 0; i < 5; ++i) {
            m_view->setConnected("A1");
            device().readData("9.10,45.10");
            QCoreApplication::processEvents();
        }
        QCOMPARE(changes.count, 0);
        QCOMPARE(widget("frame_ch1_value")->styleSheet(), red);
    }

    void unitsFollowTheOptions()
    {
        showReading("5.00,45.10");
        device().setUnits(2, 4);
        device().setCustomUnits({}, "ppm");
        m_view->refreshHeader();
        QCOMPARE(label("label_ch1_unit")->text(), QStringLiteral("\u00B0F"));
        QCOMPARE(label("label_ch2_unit")->text(), QString("ppm"));
        device().deviceDisconnected();
        m_view->refreshHeader();
        QCOMPARE(label("label_ch1_unit")->text(), QString());
        QTRY_COMPARE(widget("frame_ch1_value")->styleSheet(), grey);
    }

    void headerRefreshJudgesTheAlarmAgain()
    {
        showReading("5.00,45.10");
        device().setAlarmRange(6, 8, 0, 0);
        device().checkAlarmAll();
        m_view->refreshHeader();
        QTRY_COMPARE(widget("frame_ch1_value")->styleSheet(), red);
    }

    void onlyANewLengthFitsTheFont()
    {
        show(QSize(810, 404));
        showReading("23.40,45.10");
        QLabel *number = label("label_ch1_number");
        QFont marked = number->font();
        marked.setPointSize(7);
        number->setFont(marked);
        device().readData("23.50,45.10");
        QCOMPARE(number->font().pointSize(), 7);
        device().readData("9.90,45.10");
        QVERIFY(number->font().pointSizeF() > 7);
    }

    void dataWithoutADeviceIsIgnored()
    {
        History times;
        times.fill(1700000000);
        m_view->updateData(times, times, times, "1.00", "2.00");
        QCOMPARE(label("label_ch1_number")->text(), QString());
        QVERIFY(viewer(0)->chart()->layers().empty());
    }

    void clearForgetsTheDevice()
    {
        showReading("9.00,45.10");
        m_view->clear();
        for (const char *name : {"label_ch1_device", "label_ch1_desc", "label_ch1_number", "label_ch1_unit",
                                 "label_ch2_device", "label_ch2_desc", "label_ch2_number", "label_ch2_unit"})
            QCOMPARE(label(name)->text(), QString());
        QVERIFY(imageOf(label("label_device_type")).isNull());
        QVERIFY(shows(label("label_device_status"), "DeviceDisconnectedSymbol"));
        QVERIFY(button("btn_network")->isHidden());
        QVERIFY(viewer(0)->chart()->layers().empty());
        QVERIFY(viewer(1)->chart()->layers().empty());
        QTRY_COMPARE(widget("frame_ch1_value")->styleSheet(), grey);
        // Readings of the device that is still attached.
        device().readData("9.00,45.10");
        QCOMPARE(label("label_ch1_number")->text(), QString());
    }

    void theNextDeviceDoesNotShowTheValuesOfTheLast()
    {
        showReading("9.00,45.10");
        ConfiguredDevice other("B2", NetworkInterface);
        other.deviceConnected();
        m_view->setDevice(&other);
        QCOMPARE(label("label_ch1_number")->text(), QString());
        QTRY_COMPARE(widget("frame_ch1_value")->styleSheet(), grey);
    }

    void nullIsIgnored()
    {
        showReading("5.00,45.10");
        m_view->setDevice(nullptr);
        QCOMPARE(label("label_ch1_number")->text(), QString("5.00"));
    }

    void outlivesItsDevice()
    {
        auto other = std::make_unique<ConfiguredDevice>("B2", NetworkInterface);
        m_view->setDevice(other.get());
        other.reset();
        m_view->setConnected("B2");
        m_view->refreshHeader();
        m_view->updateChart();
        m_view->clear();
    }

    // Charts

    void chartsFillTheirLabels()
    {
        show(QSize(1000, 500));
        const QSize room = widget("label_ch1_chart")->size();
        QCOMPARE(viewer(0)->chart()->size(), QSize(room.width() - 10, room.height()));
        QCOMPARE(viewer(0)->chart()->plotArea().area, QRect(45, 25, room.width() - 60, room.height() - 55));
        QCOMPARE(viewer(0)->pos(), QPoint(0, 0));
        QCOMPARE(viewer(0)->size(), viewer(0)->chart()->size());
        const QPixmap pixmap = viewer(0)->pixmap(Qt::ReturnByValue);
        QCOMPARE(pixmap.devicePixelRatio(), m_view->devicePixelRatioF());
        QCOMPARE(pixmap.size(), viewer(0)->size() * m_view->devicePixelRatioF());
    }

    void anEmptyViewShowsAnEmptyPlot()
    {
        show(QSize(810, 404));
        for (QChartViewer *each : viewers()) {
            QVERIFY(each->chart()->layers().empty());
            QVERIFY(!each->chart()->dynamicLayer().isEmpty());
        }
    }

    void eachReadingDrawsBothChartsAnew()
    {
        m_view->setDevice(&device());
        device().setChartView(m_view.get());
        QSignalSpy changed1(viewer(0), &QChartViewer::viewPortChanged);
        QSignalSpy changed2(viewer(1), &QChartViewer::viewPortChanged);
        m_clocked->reply("21.50,45.10", 10000);
        QCOMPARE(changed1.size(), 1);
        QCOMPARE(changed2.size(), 1);
        QCOMPARE(newestShown(0), 21.5);
        QCOMPARE(newestShown(1), 45.1);
        QCOMPARE(viewer(0)->chart()->layers().front()->dataSets().front()->colour, QColor(255, 0, 0));
        QCOMPARE(viewer(1)->chart()->layers().front()->dataSets().front()->colour, QColor(0, 204, 0));
    }

    void theTimeAxisFollowsTheDataInterval()
    {
        showReading("21.50,45.10");
        const auto span = [this] {
            const auto range = viewer(0)->chart()->xAxis().range();
            return range ? range->high - range->low : -1;
        };
        QCOMPARE(span(), 2400.0);
        dataIntervalMs = 1000;
        m_view->updateChart();
        QCOMPARE(span(), 240.0);
    }

    // The cursor

    void theCursorFollowsTheMouseOverTheFinishedPicture()
    {
        fillHistory();
        show(QSize(810, 404));
        const QImage atRest = shownWithout(0);
        const qint64 finished = viewer(0)->chart()->finishedPicture(m_view->devicePixelRatioF()).cacheKey();
        const QImage before = imageOf(viewer(0));
        moveTo(0, {150, 60});
        QVERIFY(imageOf(viewer(0)) != before);
        QCOMPARE(viewer(0)->chart()->finishedPicture(m_view->devicePixelRatioF()).cacheKey(), finished);
        QCOMPARE(shownWithout(0), atRest);
        // The other chart's cursor stays.
        moveTo(1, {300, 60});
        const QImage second = imageOf(viewer(1));
        moveTo(0, {200, 60});
        QCOMPARE(imageOf(viewer(1)), second);
    }

    void aRedrawKeepsTheCursorAtTheMouse()
    {
        fillHistory();
        show(QSize(810, 404));
        moveTo(0, {150, 60});
        const QImage tracked = imageOf(viewer(0));
        m_view->updateChart();
        QCOMPARE(imageOf(viewer(0)), tracked);
    }

    void afterTheMouseLeftTheNextRedrawPutsTheCursorAtTheNewestSample()
    {
        fillHistory();
        show(QSize(810, 404));
        const QImage atNewest = imageOf(viewer(0));
        moveTo(0, {150, 60});
        const QImage tracked = imageOf(viewer(0));
        moveTo(0, {20, 60});
        QCOMPARE(imageOf(viewer(0)), tracked);
        m_view->updateChart();
        QCOMPARE(imageOf(viewer(0)), atNewest);

        moveTo(0, {150, 60});
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(viewer(0), &leave);
        QCOMPARE(imageOf(viewer(0)), tracked);
        m_view->updateChart();
        QCOMPARE(imageOf(viewer(0)), atNewest);
    }

    void aMoveOverAnEmptyPlotIsHarmless()
    {
        show(QSize(810, 404));
        moveTo(0, {150, 60});
        moveTo(1, {150, 60});
        m_view->updateChart();
    }

    void aViewWithoutRoomIsHarmless()
    {
        fillHistory();
        auto *chartLabel = m_view->findChild<QChartViewerLabel *>("label_ch1_chart");
        chartLabel->setMinimumWidth(0);
        for (const QSize &size : {QSize(0, 0), QSize(60, 55), QSize(5, 300), QSize(300, 5)}) {
            chartLabel->resize(size);
            m_view->drawChart();
            moveTo(0, {0, 0});
            QVERIFY(viewer(0)->chart());
        }
    }

    void aNestedRedrawIsHarmless()
    {
        fillHistory();
        connect(viewer(0), &QChartViewer::viewPortChanged, m_view.get(), &ChartView::drawChart);
        connect(viewer(0), &QChartViewer::viewPortChanged, m_view.get(), &ChartView::updateChart);
        m_view->updateChart();
        QVERIFY(!viewer(0)->chart()->layers().empty());
    }

private:
    ConfiguredDevice &device() { return m_clocked->device; }
    QWidget *widget(const char *name) const { return m_view->findChild<QWidget *>(QLatin1String(name)); }
    QLabel *label(const char *name) const { return m_view->findChild<QLabel *>(QLatin1String(name)); }
    QPushButton *button(const char *name) const { return m_view->findChild<QPushButton *>(QLatin1String(name)); }

    QChartViewer *viewer(int channel) const
    {
        return widget(channel == 0 ? "label_ch1_chart" : "label_ch2_chart")->findChild<QChartViewer *>();
    }
    QList<QChartViewer *> viewers() const { return {viewer(0), viewer(1)}; }

    QRect placeOf(const char *name) const
    {
        const QWidget *found = widget(name);
        return {found->mapTo(m_view.get(), QPoint(0, 0)), found->size()};
    }

    void show(const QSize &size)
    {
        m_view->resize(size);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    }

    void showReading(const QString &reply)
    {
        m_view->setDevice(&device());
        device().setChartView(m_view.get());
        m_clocked->reply(reply, 10000);
    }

    void fillHistory()
    {
        m_view->setDevice(&device());
        device().setChartView(m_view.get());
        for (int i = 0; i < historyLength; ++i)
            m_clocked->reply(QStringLiteral("%1.50,45.10").arg(i % 9), 10000);
    }

    double newestShown(int channel) const
    {
        const auto &layers = viewer(channel)->chart()->layers();
        return layers.empty() ? chart::noValue : layers.front()->dataSets().front()->values.back();
    }

    QImage shownWithout(int channel) const
    {
        return viewer(channel)->chart()->finishedPicture(m_view->devicePixelRatioF());
    }

    void moveTo(int channel, const QPoint &position)
    {
        m_now += 300;
        QMouseEvent event(QEvent::MouseMove, position, position, viewer(channel)->mapToGlobal(position), Qt::NoButton,
                          Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(viewer(channel), &event);
    }

    qint64 m_now = 0;
    std::unique_ptr<TemporaryInterval> m_interval;
    std::unique_ptr<ClockedDevice> m_clocked;
    std::unique_ptr<ConfiguredDevice> m_usb;
    std::unique_ptr<ChartView> m_view;
};

QTEST_MAIN(tst_ChartView)
#include "tst_ChartView.moc"
