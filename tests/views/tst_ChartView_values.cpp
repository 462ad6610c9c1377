#include "ChartViewFixture.h"

#include <QPushButton>

namespace {

const QString grey = QStringLiteral("background-color: qlineargradient(spread:pad, x1:0.372222, y1:0.46, x2:1, y2:1, "
                                    "stop:0 rgba(80, 80, 80, 255), stop:1 rgba(125, 125, 125, 255));");
const QString teal = QStringLiteral("background-color: qlineargradient(spread:pad, x1:0.372222, y1:0.46, x2:1, y2:1, "
                                    "stop:0 rgba(24, 68, 76, 255), stop:1 rgba(43, 132, 130, 255));");
const QString red = QStringLiteral("background-color: qlineargradient(spread:pad, x1:0.372222, y1:0.46, x2:1, y2:1, "
                                   "stop:0 rgba(145, 27, 66, 255), stop:1 rgba(181, 69, 96, 255));");

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

/// What the view tells of its device: state, values, alarms.
class tst_ChartView_values : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<ChartViewFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void showsWhatTheDeviceKnows()
    {
        m_fixture->device().readData("5.00,45.10");
        view().setDevice(&m_fixture->device());
        QCOMPARE(m_fixture->label("label_ch1_number")->text(), QString("5.00"));
        QCOMPARE(m_fixture->label("label_ch2_number")->text(), QString("45.10"));
        QCOMPARE(m_fixture->label("label_ch1_unit")->text(), QStringLiteral("\u00B0C"));
        QCOMPARE(m_fixture->label("label_ch2_unit")->text(), QString("%RH"));
        QVERIFY(m_fixture->shows("label_device_status", "DeviceConnectingSymbol"));
        QTRY_COMPARE(m_fixture->widget("frame_ch1_value")->styleSheet(), teal);
        QCOMPARE(m_fixture->newestShown(0), 5.0);
        QCOMPARE(m_fixture->newestShown(1), 45.1);
    }

    void connectingShowsTheConnectingSymbol()
    {
        view().setDevice(&m_fixture->device());
        QVERIFY(m_fixture->shows("label_device_status", "DeviceDisconnectedSymbol"));
        QCOMPARE(m_fixture->widget("frame_ch1_value")->styleSheet(), grey);
        view().setConnected("A1");
        QVERIFY(m_fixture->shows("label_device_status", "DeviceConnectingSymbol"));
        QVERIFY(!m_fixture->shows("label_device_status", "DeviceConnectedSymbol"));
        QTRY_COMPARE(m_fixture->widget("frame_ch1_value")->styleSheet(), teal);
        QCOMPARE(m_fixture->widget("frame_ch2_value")->styleSheet(), teal);
    }

    void losingTheDeviceBlanksTheValues()
    {
        m_fixture->showReading("9.00,45.10");
        QTRY_COMPARE(m_fixture->widget("frame_ch1_value")->styleSheet(), red);
        m_fixture->device().deviceDisconnected();
        QVERIFY(m_fixture->shows("label_device_status", "DeviceDisconnectedSymbol"));
        for (const char *name : {"label_ch1_number", "label_ch1_unit", "label_ch2_number", "label_ch2_unit"})
            QCOMPARE(m_fixture->label(name)->text(), QString());
        QTRY_COMPARE(m_fixture->widget("frame_ch1_value")->styleSheet(), grey);
        QCOMPARE(m_fixture->widget("frame_ch2_value")->styleSheet(), grey);
        // The history stays on the chart.
        QCOMPARE(m_fixture->newestShown(0), 9.0);
    }

    void noticesForOthersChangeNothing()
    {
        view().setConnected("A1");
        QVERIFY(m_fixture->shows("label_device_status", "DeviceDisconnectedSymbol"));
        m_fixture->showReading("5.00,45.10");
        view().setDisconnected("B2");
        QVERIFY(m_fixture->shows("label_device_status", "DeviceConnectingSymbol"));
        QCOMPARE(m_fixture->label("label_ch1_number")->text(), QString("5.00"));
        m_fixture->device().deviceDisconnected();
        view().setConnected("B2");
        QVERIFY(m_fixture->shows("label_device_status", "DeviceDisconnectedSymbol"));
    }

    void alarmsAreRedByChannel()
    {
        m_fixture->showReading("9.00,45.10");
        QTRY_COMPARE(m_fixture->widget("frame_ch1_value")->styleSheet(), red);
        QCOMPARE(m_fixture->widget("frame_ch2_value")->styleSheet(), teal);
        m_fixture->device().readData("5.00,45.10");
        QTRY_COMPARE(m_fixture->widget("frame_ch1_value")->styleSheet(), teal);
    }

    void anAlarmingChannelIsNotPaintedTealInBetween()
    {
        m_fixture->showReading("9.00,45.10");
        QTRY_COMPARE(m_fixture->widget("frame_ch1_value")->styleSheet(), red);
        StyleChanges changes(m_fixture->widget("frame_ch1_value"));
        for (int i = 0; i < 5; ++i) {
            view().setConnected("A1");
            m_fixture->device().readData("9.10,45.10");
            QCoreApplication::processEvents();
        }
        QCOMPARE(changes.count, 0);
        QCOMPARE(m_fixture->widget("frame_ch1_value")->styleSheet(), red);
    }

    void unitsFollowTheOptions()
    {
        m_fixture->showReading("5.00,45.10");
        m_fixture->device().setUnits(2, 4);
        m_fixture->device().setCustomUnits({}, "ppm");
        view().refreshHeader();
        QCOMPARE(m_fixture->label("label_ch1_unit")->text(), QStringLiteral("\u00B0F"));
        QCOMPARE(m_fixture->label("label_ch2_unit")->text(), QString("ppm"));
        m_fixture->device().deviceDisconnected();
        view().refreshHeader();
        QCOMPARE(m_fixture->label("label_ch1_unit")->text(), QString());
        QTRY_COMPARE(m_fixture->widget("frame_ch1_value")->styleSheet(), grey);
    }

    void headerRefreshJudgesTheAlarmAgain()
    {
        m_fixture->showReading("5.00,45.10");
        m_fixture->device().setAlarmRange(6, 8, 0, 0);
        m_fixture->device().checkAlarmAll();
        view().refreshHeader();
        QTRY_COMPARE(m_fixture->widget("frame_ch1_value")->styleSheet(), red);
    }

    void onlyANewLengthFitsTheFont()
    {
        m_fixture->show(QSize(810, 404));
        m_fixture->showReading("23.40,45.10");
        QLabel *number = m_fixture->label("label_ch1_number");
        QFont marked = number->font();
        marked.setPointSize(7);
        number->setFont(marked);
        m_fixture->device().readData("23.50,45.10");
        QCOMPARE(number->font().pointSize(), 7);
        m_fixture->device().readData("9.90,45.10");
        QVERIFY(number->font().pointSizeF() > 7);
    }

    void dataWithoutADeviceIsIgnored()
    {
        History times;
        times.fill(1700000000);
        view().updateData(times, times, times, "1.00", "2.00");
        QCOMPARE(m_fixture->label("label_ch1_number")->text(), QString());
        QVERIFY(m_fixture->viewer(0)->chart()->layers().empty());
    }

    void clearForgetsTheDevice()
    {
        m_fixture->showReading("9.00,45.10");
        view().clear();
        for (const char *name : {"label_ch1_device", "label_ch1_desc", "label_ch1_number", "label_ch1_unit",
                                 "label_ch2_device", "label_ch2_desc", "label_ch2_number", "label_ch2_unit"})
            QCOMPARE(m_fixture->label(name)->text(), QString());
        QVERIFY(m_fixture->imageOf(m_fixture->label("label_device_type")).isNull());
        QVERIFY(m_fixture->shows("label_device_status", "DeviceDisconnectedSymbol"));
        QVERIFY(button("btn_network")->isHidden());
        QVERIFY(m_fixture->viewer(0)->chart()->layers().empty());
        QVERIFY(m_fixture->viewer(1)->chart()->layers().empty());
        QTRY_COMPARE(m_fixture->widget("frame_ch1_value")->styleSheet(), grey);
        // Readings of the device that is still attached.
        m_fixture->device().readData("9.00,45.10");
        QCOMPARE(m_fixture->label("label_ch1_number")->text(), QString());
    }

    void theNextDeviceDoesNotShowTheValuesOfTheLast()
    {
        m_fixture->showReading("9.00,45.10");
        ConfiguredDevice other("B2", NetworkInterface);
        other.deviceConnected();
        view().setDevice(&other);
        QCOMPARE(m_fixture->label("label_ch1_number")->text(), QString());
        QTRY_COMPARE(m_fixture->widget("frame_ch1_value")->styleSheet(), grey);
    }

    void nullIsIgnored()
    {
        m_fixture->showReading("5.00,45.10");
        view().setDevice(nullptr);
        QCOMPARE(m_fixture->label("label_ch1_number")->text(), QString("5.00"));
    }

    void outlivesItsDevice()
    {
        auto other = std::make_unique<ConfiguredDevice>("B2", NetworkInterface);
        view().setDevice(other.get());
        other.reset();
        view().setConnected("B2");
        view().refreshHeader();
        view().updateChart();
        view().clear();
    }

private:
    ChartView &view() const { return m_fixture->view; }
    QPushButton *button(const char *name) const { return view().findChild<QPushButton *>(QLatin1String(name)); }

    std::unique_ptr<ChartViewFixture> m_fixture;
};

QTEST_MAIN(tst_ChartView_values)
#include "tst_ChartView_values.moc"
