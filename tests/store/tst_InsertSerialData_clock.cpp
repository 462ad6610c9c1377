#include "store/Recording.h"

#include <QtTest>

#include <algorithm>

/// Clocks that are set, and times that do not fit into 31 bits.
class tst_InsertSerialData_clock : public QObject
{
    Q_OBJECT

private slots:
    void rowIdsFollowTheArrival_data()
    {
        QTest::addColumn<QList<quint32>>("times");

        QTest::newRow("set back") << QList<quint32>{1700003600, 1700003601, 1700000000, 1700000001};
        QTest::newRow("set forward") << QList<quint32>{1700000000, 1700000001, 1800000000, 1800000001};
        // Nights of 2023 in Europe: a day of 23 hours and one of 25.
        QTest::newRow("clocks go forward") << QList<quint32>{1679792399, 1679792400, 1679792401};
        QTest::newRow("clocks go back") << QList<quint32>{1698541199, 1698541200, 1698544800};
        QTest::newRow("midnight") << QList<quint32>{1700006399, 1700006400, 1700006401};
        QTest::newRow("2038") << QList<quint32>{2147483647, 2147483648u, 2147483649u};
        QTest::newRow("the last second") << QList<quint32>{4294967294u, 4294967295u};
    }

    void rowIdsFollowTheArrival()
    {
        QFETCH(QList<quint32>, times);
        const Recording recording;
        QStringList expected;
        {
            const auto store = recording.open();
            QVERIFY(store);
            for (int i = 0; i < times.size(); ++i) {
                InsertSerialData::enqueue(row("A1", times.at(i)));
                store->insertNow();
                expected << QStringLiteral("%1|%2").arg(i + 1).arg(times.at(i));
            }
            QCOMPARE(store->startDateTime(), *std::min_element(times.cbegin(), times.cend()));
            QCOMPARE(store->endDateTime(), *std::max_element(times.cbegin(), times.cend()));
        }
        QCOMPARE(OtherProgram(recording.file()).rows("select id, pointDate from ostrivane order by id"), expected);
        const auto again = recording.open();
        QVERIFY(again);
        QCOMPARE(again->openingReport().tornFile, QString());
        QCOMPARE(again->startDateTime(), *std::min_element(times.cbegin(), times.cend()));
        QCOMPARE(again->endDateTime(), *std::max_element(times.cbegin(), times.cend()));
        QCOMPARE(recording.integrity(), QString("ok"));
    }
};

QTEST_GUILESS_MAIN(tst_InsertSerialData_clock)
#include "tst_InsertSerialData_clock.moc"
