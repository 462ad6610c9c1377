#include "device/ConfiguredDevice.h"
#include "views/DashBoardDeviceItem.h"
#include "views/StateBackground.h"

#include <QFrame>
#include <QLabel>
#include <QTest>

namespace {

const QString key = QStringLiteral("0200AA000001");

/// Counts what reaches a widget: whether it was painted or laid out.
class Watch : public QObject
{
public:
    explicit Watch(QWidget *watched) : QObject(watched) { watched->installEventFilter(this); }
    int paints = 0;
    int layouts = 0;

    bool eventFilter(QObject *, QEvent *event) override
    {
        paints += event->type() == QEvent::Paint;
        layouts += event->type() == QEvent::LayoutRequest;
        return false;
    }
};

} // namespace

/// The value within its tile.
class tst_TileValue : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void newValuePaintsAndLaysOutNothingElse();
    void newBackgroundPaintsBehindTheValue();
    void textStandsAsOnAnyLabel();
    void followsTheSizeOfTheTile();

private:
    QLabel *value() const { return m_tile->findChild<QLabel *>(QStringLiteral("label_number")); }
    QFrame *frame() const { return m_tile->findChild<QFrame *>(QStringLiteral("frame_value")); }

    std::unique_ptr<ConfiguredDevice> m_device;
    std::unique_ptr<DashBoardDeviceItem> m_tile;
};

void tst_TileValue::init()
{
    m_device = std::make_unique<ConfiguredDevice>(key, NetworkInterface);
    m_device->setUnits(1, 3);
    m_tile = std::make_unique<DashBoardDeviceItem>(m_device.get(), DashBoardDeviceItem::Channel::One);
    m_tile->resize(150, 140);
    m_tile->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_tile.get()));
}

void tst_TileValue::cleanup()
{
    m_tile.reset();
    m_device.reset();
}

void tst_TileValue::newValuePaintsAndLaysOutNothingElse()
{
    m_tile->setConnected(key);
    m_tile->setValue(QStringLiteral("4.50"));
    QTRY_COMPARE(frame()->styleSheet(), styleSheetOf(StateBackground::Normal));
    QCoreApplication::processEvents();
    // What the new background lays out and paints anew is over before the watch begins.
    m_tile->grab();
    QCoreApplication::sendPostedEvents();
    m_tile->repaint();
    QCoreApplication::processEvents();
    const auto *onValue = new Watch(value());
    const auto *onFrame = new Watch(frame());
    const auto *onTile = new Watch(m_tile.get());
    m_tile->setValue(QStringLiteral("4.60"));
    QTRY_COMPARE(onValue->paints, 1);
    QCoreApplication::sendPostedEvents();
    for (const Watch *watch : {onFrame, onTile}) {
        QCOMPARE(watch->paints, 0);
        QCOMPARE(watch->layouts, 0);
    }
}

void tst_TileValue::newBackgroundPaintsBehindTheValue()
{
    for (const bool alarm : {false, true}) {
        const QImage before = frame()->grab().toImage();
        m_tile->setAlarm(alarm);
        QTRY_COMPARE(frame()->styleSheet(), styleSheetOf(alarm ? StateBackground::Alarm : StateBackground::Normal));
        // Without a value the label is nothing but what lies behind it.
        const QImage withLabel = frame()->grab().toImage();
        QVERIFY(withLabel != before);
        value()->hide();
        QCOMPARE(withLabel, frame()->grab().toImage());
        value()->show();
    }
}

void tst_TileValue::textStandsAsOnAnyLabel()
{
    m_tile->setValue(QStringLiteral("-18.05"));
    QCoreApplication::processEvents();
    QLabel plain(frame());
    plain.setStyleSheet(value()->styleSheet());
    plain.setFont(value()->font());
    plain.setAlignment(value()->alignment());
    plain.setText(value()->text());
    plain.setGeometry(value()->geometry());
    const QImage own = frame()->grab().toImage();
    value()->hide();
    plain.show();
    QCOMPARE(own, frame()->grab().toImage());
}

void tst_TileValue::followsTheSizeOfTheTile()
{
    const QSize before = value()->size();
    m_tile->resize(250, 240);
    QTRY_COMPARE(value()->width(), 250);
    QCOMPARE(value()->height(), before.height() + 100);
}

QTEST_MAIN(tst_TileValue)
#include "tst_TileValue.moc"
