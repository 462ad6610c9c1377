#include "ChartViewFixture.h"
#include "views/ResizeLabel.h"

#include <QPushButton>
#include <QSignalSpy>

class tst_ChartView : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<ChartViewFixture>(); }
    void cleanup() { m_fixture.reset(); }

    // The form

    void formIsAsDesigned()
    {
        QCOMPARE(view().objectName(), QString("ChartView"));
        QCOMPARE(view().size(), QSize(810, 404));
        QCOMPARE(view().windowTitle(), QString("Form"));
        QVERIFY(!view().windowIcon().isNull());
        QCOMPARE(view().styleSheet(), QString("QToolTip { color: rgb(230,230,230); background-color: rgb(12, 12, 12); "
                                              "border: #996633; }"));
        QCOMPARE(m_fixture->widget("topFrame")->maximumHeight(), 70);
        for (const char *name : {"frame_device", "frame_serial"}) {
            QCOMPARE(m_fixture->widget(name)->minimumSize(), QSize(200, 25));
            QCOMPARE(m_fixture->widget(name)->maximumSize(), QSize(428, 25));
        }
        for (const char *name : {"frame_channel1", "frame_channel2"}) {
            QCOMPARE(m_fixture->widget(name)->minimumSize(), QSize(200, 123));
            QCOMPARE(m_fixture->widget(name)->maximumWidth(), 300);
        }
        QCOMPARE(m_fixture->widget("label_ch1_chart")->minimumWidth(), 584);
        QCOMPARE(m_fixture->widget("label_ch2_chart")->minimumWidth(), 584);
        QCOMPARE(button("btn_network")->text(), QString("Network Info."));
        QCOMPARE(button("btn_network")->toolTip(), QString("Network Information"));
        QVERIFY(!button("btn_network")->icon().isNull());
        QCOMPARE(button("btn_setting")->text(), QString("Option"));
        QCOMPARE(button("btn_setting")->toolTip(), QString("Modify Options"));
        QCOMPARE(m_fixture->label("label_device")->font().pointSize(), 10);
        QVERIFY(m_fixture->shows("label_device_type", "DeviceImg"));
        QVERIFY(button("btn_network")->isHidden());
        QVERIFY(view().findChild<ResizeLabel *>("label_ch1_number"));
        QVERIFY(view().findChild<ResizeLabel *>("label_ch2_number"));
        QVERIFY(view().findChild<ResizeLabelUnit *>("label_ch1_unit"));
        QVERIFY(view().findChild<ResizeLabelUnit *>("label_ch2_unit"));
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
        m_fixture->device().setDeviceInfo(QString(40, 'W'), QString(40, 'W'), QString(40, 'W'), "10.0.0.7", 23);
        view().setDevice(&m_fixture->device());
        m_fixture->show(size);
        QCOMPARE(view().size(), size);
        const QList<const char *> names{"frame_device",   "frame_serial",    "frame_channel1",
                                        "frame_channel2", "label_ch1_chart", "label_ch2_chart"};
        for (const char *a : names) {
            QVERIFY(view().rect().contains(placeOf(a)));
            for (const char *b : names)
                QVERIFY(a == b || !placeOf(a).intersects(placeOf(b)));
        }
        QVERIFY(placeOf("frame_ch1_label").width() == 47 && placeOf("frame_ch2_label").width() == 47);
        for (const char *name : {"frame_ch1_description", "frame_ch2_description"})
            QVERIFY(m_fixture->widget(name)->height() >= 53 && m_fixture->widget(name)->height() <= 60);
        for (const char *name : {"btn_network", "btn_setting"})
            QVERIFY(m_fixture->widget(name)->width() >= m_fixture->widget(name)->sizeHint().width());
        QVERIFY(!placeOf("label_device").intersects(placeOf("btn_network")));
        QCOMPARE(m_fixture->widget("label_ch1_unit")->height(), 30);
    }

    void channelBadgesHaveTheSameSizeAtAnyDensity_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("channel 1") << "frame_ch1_picture";
        QTest::newRow("channel 2") << "frame_ch2_picture";
    }

    void channelBadgesHaveTheSameSizeAtAnyDensity()
    {
        QFETCH(QString, name);
        m_fixture->show(QSize(810, 404));
        const QImage strip = view().findChild<QWidget *>(name)->grab().toImage();
        QRectF badge;
        for (int y = 0; y < strip.height(); ++y) {
            for (int x = 0; x < strip.width(); ++x) {
                if (strip.pixelColor(x, y) != QColor(48, 48, 48))
                    badge |= QRectF(x, y, 1, 1);
            }
        }
        const double density = strip.devicePixelRatio();
        QVERIFY(std::abs(badge.width() / density - 32) < 2);
        QVERIFY(std::abs(badge.height() / density - 44) < 2);
        QVERIFY(std::abs(badge.center().x() - strip.width() / 2.0) <= density);
    }

    void aGrownViewCanShrinkAgain()
    {
        view().setDevice(&m_fixture->device());
        m_fixture->device().setChartView(&view());
        m_fixture->device().readData("21.50,45.10");
        m_fixture->show(QSize(1720, 900));
        QTRY_COMPARE(m_fixture->viewer(0)->width(), m_fixture->widget("label_ch1_chart")->width() - 10);
        view().resize(810, 404);
        QTRY_COMPARE(view().size(), QSize(810, 404));
        QTRY_COMPARE(m_fixture->viewer(0)->width(), m_fixture->widget("label_ch1_chart")->width() - 10);
        QCOMPARE(m_fixture->viewer(0)->height(), m_fixture->widget("label_ch1_chart")->height());
    }

    // The header

    void aNetworkDeviceShowsItsMacAndTheNetworkButton()
    {
        view().setDevice(&m_fixture->device());
        QVERIFY(!button("btn_network")->isHidden());
        QCOMPARE(m_fixture->label("label_serialnumber")->text(), QString("MAC : A1"));
        QVERIFY(m_fixture->shows("label_device_type", "icon_lan"));
    }

    void aUsbDeviceShowsItsSerialNumber()
    {
        view().setDevice(&m_fixture->device());
        view().clear();
        QVERIFY(button("btn_network")->isHidden());
        ConfiguredDevice usb("12345678", UsbInterface);
        view().setDevice(&usb);
        QVERIFY(button("btn_network")->isHidden());
        QCOMPARE(m_fixture->label("label_serialnumber")->text(), QString("SN : 12345678"));
        QVERIFY(m_fixture->shows("label_device_type", "icon_usb"));
    }

    void namesFallBack()
    {
        view().setDevice(&m_fixture->device());
        for (const char *name : {"label_device", "label_ch1_device", "label_ch2_device"})
            QCOMPARE(m_fixture->label(name)->text(), QString("Cold room"));
        QCOMPARE(m_fixture->label("label_ch1_desc")->text(), QString("Air"));
        QCOMPARE(m_fixture->label("label_ch2_desc")->text(), QString("Damp"));
        m_fixture->device().setDeviceInfo({}, {}, {}, "10.0.0.7", 23);
        view().refreshHeader();
        for (const char *name : {"label_device", "label_ch1_device", "label_ch2_device"})
            QCOMPARE(m_fixture->label(name)->text(), QString("10.0.0.7"));
        QCOMPARE(m_fixture->label("label_ch1_desc")->text(), QString("CH1"));
        QCOMPARE(m_fixture->label("label_ch2_desc")->text(), QString("CH2"));
    }

    void namesArePlainText()
    {
        const QString name = "<b>Cold & room</b>";
        m_fixture->device().setDeviceInfo(name, name, name, "10.0.0.7", 23);
        view().setDevice(&m_fixture->device());
        for (const char *object : {"label_device", "label_ch1_device", "label_ch1_desc", "label_ch2_device",
                                   "label_ch2_desc", "label_serialnumber"})
            QCOMPARE(m_fixture->label(object)->textFormat(), Qt::PlainText);
        QCOMPARE(m_fixture->label("label_device")->text(), name);
        QVERIFY(!m_fixture->label("label_device")->toolTip().contains("<b>"));
    }

    void longNamesAreElidedWithTheWholeInTheToolTip()
    {
        const QString name = "A cold room with a name of forty letters";
        m_fixture->device().setDeviceInfo(name, name, name, "10.0.0.7", 23);
        view().setDevice(&m_fixture->device());
        m_fixture->show(QSize(810, 404));
        for (const char *object : {"label_device", "label_ch1_device", "label_ch1_desc"}) {
            QCOMPARE(m_fixture->label(object)->text(), name);
            QVERIFY(m_fixture->label(object)->toolTip().contains(name));
            QVERIFY(m_fixture->label(object)->width() <
                    m_fixture->label(object)->fontMetrics().horizontalAdvance(name));
        }
    }

    void buttonsAsk()
    {
        view().setDevice(&m_fixture->device());
        QSignalSpy option(&view(), &ChartView::popupSensingOption);
        QSignalSpy network(&view(), &ChartView::popupNetworkSetting);
        button("btn_setting")->click();
        QCOMPARE(option.size(), 1);
        QCOMPARE(network.size(), 0);
        button("btn_network")->click();
        QCOMPARE(network.size(), 1);
    }

private:
    ChartView &view() const { return m_fixture->view; }
    QPushButton *button(const char *name) const { return view().findChild<QPushButton *>(QLatin1String(name)); }

    QRect placeOf(const char *name) const
    {
        const QWidget *found = m_fixture->widget(name);
        return {found->mapTo(&view(), QPoint(0, 0)), found->size()};
    }

    std::unique_ptr<ChartViewFixture> m_fixture;
};

QTEST_MAIN(tst_ChartView)
#include "tst_ChartView.moc"
