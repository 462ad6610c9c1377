#include "device/ConfiguredDevice.h"
#include "views/DashBoardDeviceItem.h"

#include <QFrame>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>

namespace {

using Channel = DashBoardDeviceItem::Channel;

const QString grey = QStringLiteral("background-color: qlineargradient(spread:pad, x1:0.372222, y1:0.46, x2:1, y2:1, "
                                    "stop:0 rgba(80, 80, 80, 255), stop:1 rgba(125, 125, 125, 255));");
const QString teal = QStringLiteral("background-color: qlineargradient(spread:pad, x1:0.372222, y1:0.46, x2:1, y2:1, "
                                    "stop:0 rgba(24, 68, 76, 255), stop:1 rgba(43, 132, 130, 255));");
const QString red = QStringLiteral("background-color: qlineargradient(spread:pad, x1:0.372222, y1:0.46, x2:1, y2:1, "
                                   "stop:0 rgba(145, 27, 66, 255), stop:1 rgba(181, 69, 96, 255));");
const QString key = QStringLiteral("0200AA000001");

/// Counts the events of one type that reach a widget.
class EventCount : public QObject
{
public:
    EventCount(QObject *watched, QEvent::Type type) : QObject(watched), m_type(type)
    {
        watched->installEventFilter(this);
    }
    int count = 0;

    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == m_type;
        return false;
    }

private:
    const QEvent::Type m_type;
};

} // namespace

class tst_DashBoardDeviceItem : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<ConfiguredDevice *>(); }
    void init();
    void cleanup();

    void formIsAsDesigned();
    void tilesShareOneWindowIcon();
    void namesFallBack_data();
    void namesFallBack();
    void unitTexts_data();
    void unitTexts();
    void startsBlankAndGrey();
    void connectedIsTealBeforeAnyReading();
    void alarmIsRedUntilTheReturn();
    void eachChannelHasItsOwnAlarm();
    void lostInAlarmIsBlankAndGrey();
    void noticesForOthersChangeNothing();
    void backgroundIsDecidedOncePerTurn();
    void sameLengthKeepsTheFont();
    void newLengthFitsTheFont();
    void unitFillsItsLabelAfterAResize();
    void refreshReadsNamesAndUnit();
    void refreshWithoutValueStaysBlank();
    void refreshJudgesTheAlarmAgain();
    void anyButtonClicks_data();
    void anyButtonClicks();
    void keyboardOpens_data();
    void keyboardOpens();
    void focusIsVisible();
    void withoutDeviceTheCellLooksEmpty();
    void outlivesItsDevice();
    void namesArePlainText();
    void longNamesAreElidedWithTheWholeInTheToolTip();

private:
    QLabel *label(const char *name) const { return m_tile->findChild<QLabel *>(QLatin1String(name)); }
    QFrame *valueFrame() const { return m_tile->findChild<QFrame *>(QStringLiteral("frame_value")); }
    void rebuild(Channel channel = Channel::One);

    std::unique_ptr<ConfiguredDevice> m_device;
    std::unique_ptr<DashBoardDeviceItem> m_tile;
};

void tst_DashBoardDeviceItem::init()
{
    m_device = std::make_unique<ConfiguredDevice>(key, NetworkInterface);
    m_device->setDeviceInfo(QStringLiteral("Cold room"), QStringLiteral("Air"), QStringLiteral("Damp"),
                            QStringLiteral("10.0.0.7"), 23);
    m_device->setUnits(1, 3);
    m_device->setAlarmRange(2, 8, 0, 0);
    rebuild();
}

void tst_DashBoardDeviceItem::cleanup()
{
    if (m_device)
        m_device->detachViews();
    m_tile.reset();
    m_device.reset();
}

void tst_DashBoardDeviceItem::rebuild(Channel channel)
{
    m_device->detachViews();
    m_tile = std::make_unique<DashBoardDeviceItem>(m_device.get(), channel);
    if (channel == Channel::One)
        m_device->setTiles(m_tile.get(), nullptr);
    else
        m_device->setTiles(nullptr, m_tile.get());
}

void tst_DashBoardDeviceItem::formIsAsDesigned()
{
    QCOMPARE(m_tile->objectName(), QStringLiteral("DashBoardDeviceItem"));
    QCOMPARE(m_tile->size(), QSize(97, 91));
    m_tile->show();
    QCOMPARE(m_tile->findChild<QFrame *>(QStringLiteral("frame_ch"))->minimumSize(), QSize(97, 91));
    auto *description = m_tile->findChild<QFrame *>(QStringLiteral("frame_description"));
    QCOMPARE(description->height(), 31);
    QCOMPARE(description->styleSheet(), QStringLiteral("background-color: rgb(2, 0, 0);"));
    QCOMPARE(label("label_device")->font().pointSize(), 8);
    QVERIFY(label("label_device")->font().bold());
    const QString light = QStringLiteral("color: rgb(192,192,192);background-color: transparent;");
    QCOMPARE(label("label_device")->styleSheet(), light);
    QCOMPARE(label("label_desc")->styleSheet(), light);
    QCOMPARE(label("label_number")->styleSheet(),
             QStringLiteral("color: rgb(230,230,230);background-color: transparent;"));
    QCOMPARE(label("label_unit")->styleSheet(),
             QStringLiteral("background-color: transparent;color: rgb(230,230,230);"));
    QVERIFY(label("label_unit")->height() >= 20 && label("label_unit")->height() <= 25);
    QCOMPARE(label("label_number")->alignment(), Qt::AlignCenter);
    QVERIFY(!label("label_number")->geometry().intersects(label("label_unit")->geometry()));
    QVERIFY(valueFrame()->rect().contains(label("label_unit")->geometry()));
    m_tile->resize(240, 230);
    QCOMPARE(description->height(), 31);
    QCOMPARE(label("label_unit")->height(), 25);
}

void tst_DashBoardDeviceItem::tilesShareOneWindowIcon()
{
    const DashBoardDeviceItem other(m_device.get(), Channel::Two);
    const auto picture = [](const QWidget &tile) {
        return tile.windowIcon().pixmap(tile.windowIcon().availableSizes().value(0));
    };
    QCOMPARE(picture(*m_tile).toImage(), QPixmap(QStringLiteral(":/img/I_2.png")).toImage());
    QCOMPARE(picture(other).cacheKey(), picture(*m_tile).cacheKey());
}

void tst_DashBoardDeviceItem::namesFallBack_data()
{
    QTest::addColumn<bool>("first");
    QTest::addColumn<QString>("deviceName");
    QTest::addColumn<QString>("channelName");
    QTest::addColumn<QString>("shownDevice");
    QTest::addColumn<QString>("shownChannel");
    QTest::newRow("named, channel 1") << true << "Oven"
                                      << "Air"
                                      << "Oven"
                                      << "Air";
    QTest::newRow("named, channel 2") << false << "Oven"
                                      << "Damp"
                                      << "Oven"
                                      << "Damp";
    QTest::newRow("nameless, channel 1") << true << ""
                                         << ""
                                         << "10.0.0.7"
                                         << "CH1";
    QTest::newRow("nameless, channel 2") << false << ""
                                         << ""
                                         << "10.0.0.7"
                                         << "CH2";
}

void tst_DashBoardDeviceItem::namesFallBack()
{
    QFETCH(bool, first);
    QFETCH(QString, deviceName);
    QFETCH(QString, channelName);
    const QString other = QStringLiteral("other");
    m_device->setDeviceInfo(deviceName, first ? channelName : other, first ? other : channelName,
                            QStringLiteral("10.0.0.7"), 23);
    rebuild(first ? Channel::One : Channel::Two);
    QTEST(label("label_device")->text(), "shownDevice");
    QTEST(label("label_desc")->text(), "shownChannel");
}

void tst_DashBoardDeviceItem::unitTexts_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("shown");
    QTest::newRow("none") << 0 << "";
    QTest::newRow("Celsius") << 1 << QStringLiteral("\u00B0C");
    QTest::newRow("Fahrenheit") << 2 << QStringLiteral("\u00B0F");
    QTest::newRow("humidity") << 3 << "%RH";
    QTest::newRow("custom") << 4 << "ppm";
    QTest::newRow("unknown") << 5 << "";
    QTest::newRow("negative") << -1 << "";
}

void tst_DashBoardDeviceItem::unitTexts()
{
    QFETCH(int, unit);
    for (const Channel channel : {Channel::One, Channel::Two}) {
        const bool first = channel == Channel::One;
        m_device->setUnits(first ? unit : 3, first ? 3 : unit);
        m_device->setCustomUnits(first ? QStringLiteral("ppm") : QStringLiteral("x"),
                                 first ? QStringLiteral("x") : QStringLiteral("ppm"));
        rebuild(channel);
        QVERIFY(label("label_unit")->text().isEmpty());
        m_tile->setValue(QStringLiteral("5.00"));
        QTEST(label("label_unit")->text(), "shown");
    }
}

void tst_DashBoardDeviceItem::startsBlankAndGrey()
{
    QVERIFY(label("label_number")->text().isEmpty());
    QVERIFY(label("label_unit")->text().isEmpty());
    QCOMPARE(valueFrame()->styleSheet(), grey);
}

void tst_DashBoardDeviceItem::connectedIsTealBeforeAnyReading()
{
    m_device->deviceConnected();
    QTRY_COMPARE(valueFrame()->styleSheet(), teal);
    QVERIFY(label("label_number")->text().isEmpty());
}

void tst_DashBoardDeviceItem::alarmIsRedUntilTheReturn()
{
    m_device->readData(QStringLiteral("9.00,45.10"));
    QCOMPARE(label("label_number")->text(), QStringLiteral("9.00"));
    QTRY_COMPARE(valueFrame()->styleSheet(), red);
    m_device->readData(QStringLiteral("5.00,45.10"));
    QTRY_COMPARE(valueFrame()->styleSheet(), teal);
    m_tile->setAlarm(true);
    QTRY_COMPARE(valueFrame()->styleSheet(), red);
    m_tile->setAlarm(false);
    QTRY_COMPARE(valueFrame()->styleSheet(), teal);
}

void tst_DashBoardDeviceItem::eachChannelHasItsOwnAlarm()
{
    rebuild(Channel::Two);
    m_device->readData(QStringLiteral("9.00,45.10"));
    QCOMPARE(label("label_number")->text(), QStringLiteral("45.10"));
    QTRY_COMPARE(valueFrame()->styleSheet(), teal);
    m_device->setAlarmRange(0, 0, 2, 8);
    m_device->readData(QStringLiteral("9.00,45.10"));
    QTRY_COMPARE(valueFrame()->styleSheet(), red);
}

void tst_DashBoardDeviceItem::lostInAlarmIsBlankAndGrey()
{
    m_device->readData(QStringLiteral("9.00,45.10"));
    QTRY_COMPARE(valueFrame()->styleSheet(), red);
    m_device->deviceDisconnected();
    QTRY_COMPARE(valueFrame()->styleSheet(), grey);
    QVERIFY(label("label_number")->text().isEmpty());
    QVERIFY(label("label_unit")->text().isEmpty());
    m_device->deviceConnected();
    QTRY_COMPARE(valueFrame()->styleSheet(), teal);
    QVERIFY(label("label_number")->text().isEmpty());
}

void tst_DashBoardDeviceItem::noticesForOthersChangeNothing()
{
    m_device->readData(QStringLiteral("9.00,45.10"));
    QTRY_COMPARE(valueFrame()->styleSheet(), red);
    m_tile->setConnected(QStringLiteral("0200AA000002"));
    m_tile->setDisconnected(QStringLiteral("0200AA000002"));
    QCoreApplication::processEvents();
    QCOMPARE(valueFrame()->styleSheet(), red);
    QCOMPARE(label("label_number")->text(), QStringLiteral("9.00"));
}

void tst_DashBoardDeviceItem::backgroundIsDecidedOncePerTurn()
{
    m_device->readData(QStringLiteral("9.00,45.10"));
    QTRY_COMPARE(valueFrame()->styleSheet(), red);
    auto *styled = new EventCount(valueFrame(), QEvent::StyleChange);
    for (int i = 0; i < 5; ++i) {
        m_device->readData(QStringLiteral("9.0%1,45.10").arg(i));
        QCOMPARE(valueFrame()->styleSheet(), red);
        QCoreApplication::processEvents();
    }
    QCOMPARE(styled->count, 0);
    // Whatever is said within one turn, the last word is shown, once.
    m_device->readData(QStringLiteral("5.00,45.10"));
    m_device->readData(QStringLiteral("9.00,45.10"));
    m_device->deviceDisconnected();
    m_device->readData(QStringLiteral("5.00,45.10"));
    QCOMPARE(valueFrame()->styleSheet(), red);
    QTRY_COMPARE(valueFrame()->styleSheet(), teal);
    QCOMPARE(styled->count, 1);
}

void tst_DashBoardDeviceItem::sameLengthKeepsTheFont()
{
    m_tile->show();
    m_tile->setValue(QStringLiteral("23.4"));
    // A font that fits no more: any fitting would change it.
    QFont misfit = label("label_number")->font();
    misfit.setPointSizeF(5);
    label("label_number")->setFont(misfit);
    m_tile->setValue(QStringLiteral("23.5"));
    QCOMPARE(label("label_number")->font().pointSizeF(), 5.0);
    m_tile->setValue(QStringLiteral("9.9"));
    QVERIFY(label("label_number")->font().pointSizeF() > 8);
    label("label_number")->setFont(misfit);
    m_tile->setValue(QStringLiteral("10.0"));
    QVERIFY(label("label_number")->font().pointSizeF() > 8);
}

void tst_DashBoardDeviceItem::newLengthFitsTheFont()
{
    m_tile->resize(97, 200);
    m_tile->show();
    m_tile->setValue(QStringLiteral("9.9"));
    const double large = label("label_number")->font().pointSizeF();
    m_tile->setValue(QStringLiteral("-10.00"));
    QVERIFY(label("label_number")->font().pointSizeF() < large);
    m_tile->setValue(QStringLiteral("9.9"));
    QVERIFY(label("label_number")->font().pointSizeF() > large * 0.9);
}

void tst_DashBoardDeviceItem::unitFillsItsLabelAfterAResize()
{
    m_device->setUnits(4, 4);
    m_device->setCustomUnits(QStringLiteral("mg per m3 of air"), {});
    rebuild();
    m_tile->show();
    m_tile->resize(300, 200);
    m_tile->setValue(QStringLiteral("5.00"));
    const double whenWide = label("label_unit")->font().pointSizeF();
    m_tile->resize(97, 91);
    const QFontMetricsF metrics(label("label_unit")->font());
    QVERIFY(label("label_unit")->font().pointSizeF() < whenWide);
    QVERIFY(metrics.size(Qt::TextSingleLine, label("label_unit")->text()).width() <= label("label_unit")->width());
    m_tile->setDisconnected(key);
    m_tile->resize(300, 200);
    m_tile->setValue(QStringLiteral("5.00"));
    QVERIFY(label("label_unit")->font().pointSizeF() > whenWide * 0.9);
}

void tst_DashBoardDeviceItem::refreshReadsNamesAndUnit()
{
    m_tile->setValue(QStringLiteral("5.00"));
    m_device->setDeviceInfo(QStringLiteral("Oven"), QStringLiteral("Heat"), {}, QStringLiteral("10.0.0.7"), 23);
    m_device->setUnits(2, 3);
    m_tile->refresh();
    QCOMPARE(label("label_device")->text(), QStringLiteral("Oven"));
    QCOMPARE(label("label_desc")->text(), QStringLiteral("Heat"));
    QCOMPARE(label("label_unit")->text(), QStringLiteral("\u00B0F"));
}

void tst_DashBoardDeviceItem::refreshWithoutValueStaysBlank()
{
    m_device->deviceConnected();
    QTRY_COMPARE(valueFrame()->styleSheet(), teal);
    m_device->setUnits(2, 3);
    m_tile->refresh();
    QTRY_COMPARE(valueFrame()->styleSheet(), grey);
    QVERIFY(label("label_unit")->text().isEmpty());
}

void tst_DashBoardDeviceItem::refreshJudgesTheAlarmAgain()
{
    m_device->readData(QStringLiteral("5.00,45.10"));
    QTRY_COMPARE(valueFrame()->styleSheet(), teal);
    m_device->setAlarmRange(6, 8, 0, 0);
    m_device->checkAlarmAll();
    m_tile->refresh();
    QTRY_COMPARE(valueFrame()->styleSheet(), red);
}

void tst_DashBoardDeviceItem::anyButtonClicks_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("left") << int(Qt::LeftButton);
    QTest::newRow("middle") << int(Qt::MiddleButton);
    QTest::newRow("right") << int(Qt::RightButton);
}

void tst_DashBoardDeviceItem::anyButtonClicks()
{
    QFETCH(int, button);
    QSignalSpy clicked(m_tile.get(), &DashBoardDeviceItem::clicked);
    m_tile->show();
    QTest::mouseClick(label("label_number"), Qt::MouseButton(button));
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.first().first().value<ConfiguredDevice *>(), m_device.get());
}

void tst_DashBoardDeviceItem::keyboardOpens_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<int>("clicks");
    QTest::newRow("Return") << Qt::Key_Return << 1;
    QTest::newRow("Enter") << Qt::Key_Enter << 1;
    QTest::newRow("Space") << Qt::Key_Space << 1;
    QTest::newRow("another") << Qt::Key_A << 0;
}

void tst_DashBoardDeviceItem::keyboardOpens()
{
    QFETCH(Qt::Key, key);
    QSignalSpy clicked(m_tile.get(), &DashBoardDeviceItem::clicked);
    QTest::keyClick(m_tile.get(), key);
    QTEST(int(clicked.count()), "clicks");
}

void tst_DashBoardDeviceItem::focusIsVisible()
{
    m_tile->show();
    QVERIFY(QTest::qWaitForWindowActive(m_tile.get()));
    m_tile->clearFocus();
    const QImage without = m_tile->grab().toImage();
    m_tile->setFocus(Qt::TabFocusReason);
    QVERIFY(m_tile->hasFocus());
    QVERIFY(m_tile->grab().toImage() != without);
    m_tile->resize(200, 200);
    QCOMPARE(m_tile->findChild<QFrame *>(QStringLiteral("focus_ring"))->size(), QSize(200, 200));
    m_tile->resize(97, 91);
    m_tile->clearFocus();
    QCOMPARE(m_tile->grab().toImage(), without);
}

void tst_DashBoardDeviceItem::withoutDeviceTheCellLooksEmpty()
{
    DashBoardDeviceItem tile(nullptr, Channel::One);
    QSignalSpy clicked(&tile, &DashBoardDeviceItem::clicked);
    QVERIFY(tile.findChild<QFrame *>(QStringLiteral("frame_ch"))->isHidden());
    tile.setValue(QStringLiteral("5.00"));
    tile.setConnected(key);
    tile.setDisconnected(key);
    tile.refresh();
    tile.show();
    QTest::mouseClick(&tile, Qt::LeftButton);
    QCOMPARE(clicked.count(), 0);
    QVERIFY(tile.findChild<QLabel *>(QStringLiteral("label_number"))->text().isEmpty());
}

void tst_DashBoardDeviceItem::outlivesItsDevice()
{
    m_device->readData(QStringLiteral("9.00,45.10"));
    m_device->detachViews();
    m_device.reset();
    QSignalSpy clicked(m_tile.get(), &DashBoardDeviceItem::clicked);
    QTest::mouseClick(m_tile.get(), Qt::LeftButton);
    m_tile->refresh();
    m_tile->setValue(QStringLiteral("1.00"));
    m_tile->setConnected(key);
    QTRY_COMPARE(valueFrame()->styleSheet(), red);
    QCOMPARE(clicked.count(), 0);
}

void tst_DashBoardDeviceItem::namesArePlainText()
{
    m_device->setDeviceInfo(QStringLiteral("<b>Oven</b>"), QStringLiteral("<i>Air</i>"), {}, {}, 23);
    rebuild();
    QCOMPARE(label("label_device")->textFormat(), Qt::PlainText);
    QCOMPARE(label("label_desc")->textFormat(), Qt::PlainText);
    QCOMPARE(label("label_unit")->textFormat(), Qt::PlainText);
    QVERIFY(m_tile->toolTip().contains(QStringLiteral("&lt;b&gt;Oven")));
}

void tst_DashBoardDeviceItem::longNamesAreElidedWithTheWholeInTheToolTip()
{
    const QString name = QStringLiteral("The second cold room of warehouse North");
    const QString channel = QStringLiteral("Temperature of the air beside the door.");
    m_device->setDeviceInfo(name, channel, {}, {}, 23);
    rebuild();
    m_tile->show();
    QCOMPARE(m_tile->size(), QSize(97, 91));
    QCOMPARE(label("label_device")->text(), name);
    QCOMPARE(m_tile->toolTip(), name + QLatin1Char('\n') + channel);
    for (const char *line : {"label_device", "label_desc"}) {
        const QImage picture = label(line)->grab().toImage();
        const QString shown =
            label(line)->fontMetrics().elidedText(label(line)->text(), Qt::ElideRight, picture.width());
        QVERIFY(shown.endsWith(QChar(0x2026)));
        label(line)->setText(shown);
        QCOMPARE(label(line)->grab().toImage(), picture);
    }
}

QTEST_MAIN(tst_DashBoardDeviceItem)
#include "tst_DashBoardDeviceItem.moc"
