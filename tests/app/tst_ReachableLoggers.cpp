#include "app/ReachableLoggers.h"

#include "support/LogCapture.h"

#include <QTest>

namespace {

DiscoveryReply reply(const char *mac, const char *address, quint32 port)
{
    return {QLatin1String(address), QLatin1String(mac), 0, port};
}

UsbLogger usb(const char *key, const char *port)
{
    return {QLatin1String(port), QLatin1String(key)};
}

} // namespace

/// The list of loggers in reach, as scans and searches change it.
class tst_ReachableLoggers : public QObject
{
    Q_OBJECT

private slots:
    void bothKindsStandInTheOrderOfTheirComing()
    {
        QVERIFY(m_loggers.mergeUsb({usb("ZP1", "ttyACM0")}));
        m_loggers.mergeNetwork(reply("020000000001", "10.0.0.2", 23));
        QVERIFY(m_loggers.mergeUsb({usb("ZP1", "ttyACM0"), usb("ZP2", "ttyACM1")}));
        QCOMPARE(records(), (QStringList{"ZP1 ttyACM0 23 1", "020000000001 10.0.0.2 23 2", "ZP2 ttyACM1 23 1"}));
        QCOMPARE(m_loggers.size(), 3);
        QCOMPARE(m_loggers.usb(), (QList<AvailDevice *>{m_loggers.find("ZP1"), m_loggers.find("ZP2")}));
        QVERIFY(!m_loggers.find("ZP3"));
    }

    void aScanWithoutNewsChangesNothing()
    {
        const QList<UsbLogger> found{usb("ZP1", "ttyACM0"), usb("ZP2", "ttyACM1")};
        QVERIFY(m_loggers.mergeUsb(found));
        QVERIFY(!m_loggers.mergeUsb(found));
        QVERIFY(!m_loggers.mergeUsb({}));
        QCOMPARE(m_loggers.size(), 2);
    }

    void aLoggerInAnotherSocketKeepsItsRecord()
    {
        m_loggers.mergeUsb({usb("ZP1", "ttyACM0")});
        QVERIFY(m_loggers.mergeUsb({usb("ZP1", "ttyACM4")}));
        QCOMPARE(records(), QStringList{"ZP1 ttyACM4 23 1"});
    }

    void searchesFillTheListToItsBoundOnly()
    {
        LogCapture log;
        const auto answer = [this](int number, const char *address) {
            const QByteArray mac = "0200" + QByteArray::number(number).rightJustified(8, '0');
            m_loggers.mergeNetwork(reply(mac.constData(), address, 23));
        };
        for (int number = 0; number < ReachableLoggers::mostRecords + 100; ++number)
            answer(number, "10.0.0.2");
        QCOMPARE(m_loggers.size(), ReachableLoggers::mostRecords);
        answer(0, "10.0.0.3");
        QCOMPARE(m_loggers.all().first()->address, QString("10.0.0.3"));
        QVERIFY2(m_loggers.mergeUsb({usb("ZP1", "ttyACM0")}), "what is plugged in is always taken");
        QCOMPARE(log.count("ReachableLoggers::mergeNetwork : [ERROR]"), 1);
        m_loggers.clear();
        answer(1, "10.0.0.2");
        QCOMPARE(m_loggers.size(), 1);
    }

    void theFirstOfTwoWithOneKeyCounts()
    {
        const QList<UsbLogger> found{usb("ZP1", "ttyACM0"), usb("ZP1", "ttyACM1"), usb("ZP1", "ttyACM2")};
        QVERIFY(m_loggers.mergeUsb(found));
        QCOMPARE(records(), QStringList{"ZP1 ttyACM0 23 1"});
        QVERIFY(!m_loggers.mergeUsb(found));
        QCOMPARE(records(), QStringList{"ZP1 ttyACM0 23 1"});
        QVERIFY(m_loggers.mergeUsb({usb("ZP1", "ttyACM1"), usb("ZP1", "ttyACM2")}));
        QCOMPARE(records(), QStringList{"ZP1 ttyACM1 23 1"});
    }

    void eachOfTheOthersIsLoggedOnce()
    {
        const QString said = QStringLiteral("ReachableLoggers::mergeUsb : [ERROR] another logger of the key [ZP1] at ");
        const QList<UsbLogger> found{usb("ZP1", "ttyACM0"), usb("ZP1", "ttyACM1"), usb("ZP1", "ttyACM2")};
        const LogCapture log;
        m_loggers.mergeUsb(found);
        m_loggers.mergeUsb(found);
        QCOMPARE(log.lines(), (QStringList{said + "[ttyACM1]", said + "[ttyACM2]"}));
        m_loggers.mergeUsb({usb("ZP1", "ttyACM0")});
        m_loggers.mergeUsb({usb("ZP1", "ttyACM0"), usb("ZP1", "ttyACM2")});
        QCOMPARE(log.count(said), 3);
    }

    void onlyUsbLoggersVanishFromAScan()
    {
        m_loggers.mergeUsb({usb("ZP1", "ttyACM0"), usb("ZP2", "ttyACM1")});
        m_loggers.mergeNetwork(reply("020000000001", "10.0.0.2", 23));
        QCOMPARE(m_loggers.vanished({usb("ZP2", "ttyACM1")}), QStringList{"ZP1"});
        QCOMPARE(m_loggers.vanished({usb("ZP3", "ttyACM0"), usb("ZP2", "ttyACM1")}), QStringList{"ZP1"});
        QCOMPARE(m_loggers.vanished({}), (QStringList{"ZP1", "ZP2"}));
    }

    void theLatestAnnouncementCounts()
    {
        m_loggers.mergeNetwork(reply("020000000001", "10.0.0.2", 23));
        m_loggers.mergeNetwork(reply("020000000001", "10.0.0.3", 0x00010FA1));
        QCOMPARE(records(), QStringList{"020000000001 10.0.0.3 4001 2"});
    }

    void removingTheUsbLoggersKeepsTheOthers()
    {
        m_loggers.mergeUsb({usb("ZP1", "ttyACM0"), usb("ZP2", "ttyACM1")});
        m_loggers.mergeNetwork(reply("020000000001", "10.0.0.2", 23));
        m_loggers.removeUsb();
        QCOMPARE(records(), QStringList{"020000000001 10.0.0.2 23 2"});
        QVERIFY(!m_loggers.find("ZP1"));
        m_loggers.clear();
        QCOMPARE(records(), QStringList());
        QVERIFY(!m_loggers.find("020000000001"));
    }

    void init() { m_loggers = ReachableLoggers(); }

private:
    QStringList records() const
    {
        QStringList texts;
        const QList<AvailDevice *> all = m_loggers.all();
        for (const AvailDevice *record : all)
            texts
                << QStringLiteral("%1 %2 %3 %4").arg(record->key, record->address).arg(record->port).arg(record->kind);
        return texts;
    }

    ReachableLoggers m_loggers;
};

QTEST_APPLESS_MAIN(tst_ReachableLoggers)
#include "tst_ReachableLoggers.moc"
