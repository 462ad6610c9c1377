#include "StationFixture.h"

#include "app/SorvantoMain.h"
#include "store/InsertSerialData.h"

#include <QSqlDatabase>
#include <QSqlQuery>

#include <ctime>

namespace {

const QString name = QStringLiteral("Kitchen");

} // namespace

/// From when to when a recording goes, as the operator reads it.
class tst_RecordedRangeShown : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("TZ", "Europe/Berlin");
        tzset();
    }

    void init()
    {
        m_fixture = std::make_unique<StationFixture>();
        m_fixture->writeProject(name, {m_fixture->addLogger()}, 600000);
    }

    void cleanup() { m_fixture.reset(); }

    void rangeInLocalTime_data()
    {
        QTest::addColumn<QList<quint32>>("times");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        QTest::newRow("a day of 23 hours") << QList<quint32>{1679792399, 1679792400} << "2023-03-26 01:59:59"
                                           << "2023-03-26 03:00:00";
        QTest::newRow("a day of 25 hours") << QList<quint32>{1698541199, 1698544800} << "2023-10-29 02:59:59"
                                           << "2023-10-29 03:00:00";
        QTest::newRow("set back") << QList<quint32>{1700003600, 1700000000, 1700001000} << "2023-11-14 23:13:20"
                                  << "2023-11-15 00:13:20";
        QTest::newRow("2038") << QList<quint32>{2147483647, 2147483648u} << "2038-01-19 04:14:07"
                              << "2038-01-19 04:14:08";
        QTest::newRow("2106") << QList<quint32>{1700000000, 4294967295u} << "2023-11-14 23:13:20"
                              << "2106-02-07 07:28:15";
    }

    void rangeInLocalTime()
    {
        QFETCH(QList<quint32>, times);
        QFETCH(QString, start);
        QFETCH(QString, end);
        record(times);
        for (const bool isIndexed : {true, false}) {
            if (!isIndexed)
                exec(QStringLiteral("drop index ostrivane_pointDate"));
            SorvantoMain station;
            station.projectLoaded(m_fixture->projectPath(name));
            QCOMPARE(child<QLabel>(station, "label_record_starttime")->text(), start);
            QCOMPARE(child<QLabel>(station, "label_record_endtime")->text(), end);
        }
    }

    /// As earlier versions have made it: the search takes its time, and what it finds is shown and saved.
    void rangeWithoutAnIndex()
    {
        record({1700000000});
        exec(QStringLiteral("drop index ostrivane_pointDate"));
        exec(QStringLiteral("with recursive n(i) as (select 1 union all select i + 1 from n where i < 5000) "
                            "insert into ostrivane (serialno, channel1, channel2, pointDate) "
                            "select 'A1', 21.5, 40, 1700000000 + i from n"));
        exec(QStringLiteral("update ostrivane set pointDate = 1600000000 where id = 2500"));
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(name));
        const auto *start = child<QLabel>(station, "label_record_starttime");
        QCOMPARE(start->text(), QStringLiteral("2023-11-14 23:13:20"));
        QTRY_COMPARE(start->text(), QStringLiteral("2020-09-13 14:26:40"));
        QCOMPARE(child<QLabel>(station, "label_record_endtime")->text(), QStringLiteral("2023-11-15 00:36:40"));
        QCOMPARE(
            QSettings(m_fixture->projectPath(name), QSettings::IniFormat).value(QStringLiteral("record_start_time")),
            QVariant(start->text()));
    }

private:
    void record(const QList<quint32> &times) const
    {
        InsertSerialData store(m_fixture->recordingPath(name), QStringLiteral("made"));
        QVERIFY(store.createConnection());
        for (const quint32 time : times) {
            InsertSerialData::enqueue({QStringLiteral("A1"), 21.5, 40, time});
            store.insertNow();
        }
    }

    void exec(const QString &statement) const
    {
        const QString connection = QStringLiteral("other");
        {
            QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
            database.setDatabaseName(m_fixture->recordingPath(name));
            QVERIFY(database.open() && QSqlQuery(database).exec(statement));
        }
        QSqlDatabase::removeDatabase(connection);
    }

    std::unique_ptr<StationFixture> m_fixture;
};

STATION_TEST_MAIN(tst_RecordedRangeShown)
#include "tst_RecordedRangeShown.moc"
