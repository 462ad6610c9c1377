#include "app/DeviceChanges.h"

#include "device/ChannelUnit.h"

#include <QTest>
#include <functional>

namespace {

DeviceEntry logger(const QString &key, int kind = NetworkInterface)
{
    DeviceEntry entry;
    entry.serialNumber = key;
    entry.interfaceKind = kind;
    entry.name = QStringLiteral("Room ") + key;
    entry.range = {2, 8, 10, 20};
    return entry;
}

/// "kind key channel old new text low high", "-" for what is absent.
QString line(const JournalEvent &event)
{
    const auto text = [](const std::optional<QString> &value) {
        return value.value_or(QStringLiteral("-"));
    };
    const auto number = [](const std::optional<double> &value) {
        return value ? QString::number(*value) : QStringLiteral("-");
    };
    return QStringList{
        journalWord(event.kind), text(event.key),     event.channel ? QString::number(*event.channel) : "-",
        text(event.oldText),     text(event.newText), text(event.text),
        number(event.low),       number(event.high)}
        .join(QLatin1Char(' '));
}

using Change = std::function<void(DeviceEntry &)>;

} // namespace
Q_DECLARE_METATYPE(Change)

/// Which entries of the journal a change of the devices comes to.
class tst_DeviceChanges : public QObject
{
    Q_OBJECT

private slots:
    void oneDevice_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<Change>("change");
        QTest::addColumn<QStringList>("lines");
        const auto row = [](const char *name, const Change &change, const QStringList &lines,
                            int kind = NetworkInterface) {
            QTest::newRow(name) << kind << change << lines;
        };
        row("nothing", [](DeviceEntry &) {}, {});
        row("its port", [](DeviceEntry &entry) { entry.address = QStringLiteral("ttyACM1"); }, {});
        row("name", [](DeviceEntry &entry) { entry.name = QStringLiteral("Cellar"); },
            {"name-changed A - Room A Cellar - - -"});
        row("name of a channel", [](DeviceEntry &entry) { entry.ch2Name = QStringLiteral("Air"); },
            {"name-changed A 2  Air - - -"});
        row("unit", [](DeviceEntry &entry) { entry.ch1Unit = HumidityUnit; }, {"unit-changed A 1  %RH - - -"});
        row("custom unit",
            [](DeviceEntry &entry) {
                entry.ch2Unit = CustomUnit;
                entry.ch2CustomUnit = QStringLiteral("hPa");
            },
            {"unit-changed A 2  hPa - - -"});
        row("limits", [](DeviceEntry &entry) { entry.range.max1 = 21.6F; },
            {"limits-changed A 1 2..8 2..21.6 Confirmed by the logger. 2 21.6"});
        row(
            "limits of a USB logger", [](DeviceEntry &entry) { entry.range.min2 = -18.25F; },
            {"limits-changed A 2 10..20 -18.25..20 Kept by the station alone. -18.25 20"}, UsbInterface);
        row("buzzer rule", [](DeviceEntry &entry) { entry.buzzerAlarm = QStringLiteral("OR"); },
            {"buzzer-changed A - OFF OR Confirmed by the logger. - -"});
    }

    void oneDevice()
    {
        QFETCH(int, kind);
        QFETCH(Change, change);
        QFETCH(QStringList, lines);
        const DeviceEntry before = logger(QStringLiteral("A"), kind);
        DeviceEntry after = before;
        change(after);
        QStringList told;
        const QList<JournalEvent> events = deviceChanges({logger("B"), before}, {after, logger("B")});
        for (const JournalEvent &event : events)
            told << line(event);
        QCOMPARE(told, lines);
    }

    void addedAndRemoved()
    {
        const QList<JournalEvent> events = deviceChanges({logger("A"), logger("B")}, {logger("B"), logger("C")});
        QCOMPARE(events.size(), 2);
        QCOMPARE(line(events[0]), QStringLiteral("device-removed A - Room A - - - -"));
        QCOMPARE(line(events[1]), QStringLiteral("device-added C - - Room C 2..8, 10..20, buzzer OFF - -"));
    }

    void decimalLimits_data()
    {
        QTest::addColumn<float>("limit");
        QTest::addColumn<QString>("text");
        QTest::newRow("two decimals") << 21.75F << "21.75";
        QTest::newRow("one") << 21.6F << "21.6";
        QTest::newRow("large") << 16777.21F << "16777.21";
        QTest::newRow("zero") << 0.0F << "0";
    }

    void decimalLimits()
    {
        QFETCH(float, limit);
        QTEST(QString::number(decimalLimit(limit), 'g', 15), "text");
        QCOMPARE(float(decimalLimit(limit)), limit);
    }
};

QTEST_GUILESS_MAIN(tst_DeviceChanges)
#include "tst_DeviceChanges.moc"
