#include "store/PendingRow.h"
#include "support/ClockedDevice.h"
#include "support/RecordedRows.h"

#include <QTest>

/// A reading has the time of its poll, in the recording and in the chart, whatever the clock does.
class tst_RecordedTimes : public QObject
{
    Q_OBJECT

private slots:
    void timesOfPolls_data()
    {
        QTest::addColumn<QList<qint64>>("seconds");
        QTest::addColumn<QList<qint64>>("recorded");

        const auto sameTimes = [](const char *name, const QList<qint64> &seconds) {
            QTest::newRow(name) << seconds << seconds;
        };
        sameTimes("set back", {1700003600, 1700003601, 1700000000, 1700000001});
        sameTimes("set forward", {1700000000, 1700000001, 1800000000, 1800000001});
        // Nights of 2023 in Europe: a day of 23 hours and one of 25.
        sameTimes("clocks go forward", {1679792399, 1679792400, 1679792401});
        sameTimes("clocks go back", {1698541199, 1698541200, 1698544800});
        sameTimes("midnight", {1700006399, 1700006400, 1700006401});
        sameTimes("2038", {2147483647, 2147483648, 2147483649});
        sameTimes("2106", {4294967293, 4294967294});
        QTest::newRow("after 2106") << QList<qint64>{4294967295, 4294967296, 4294967297}
                                    << QList<qint64>{4294967295, 4294967295, 4294967295};
    }

    void timesOfPolls()
    {
        QFETCH(QList<qint64>, seconds);
        QFETCH(QList<qint64>, recorded);
        ClockedDevice clocked;
        clocked.device.setRecording(true);
        QList<qint64> rows;
        for (int i = 0; i < seconds.size(); ++i) {
            clocked.now = QDateTime::fromSecsSinceEpoch(seconds.at(i));
            clocked.reply(QStringLiteral("ATDC %1.00,45.10\r\n").arg(20 + i));
            rows << soleRow();
        }
        QCOMPARE(rows, recorded);
        History times;
        History channel1;
        History channel2;
        clocked.device.history(times, channel1, channel2);
        QList<qint64> shown;
        for (const double time : times) {
            if (!isNoValue(time))
                shown << qint64(time);
        }
        QCOMPARE(shown.mid(shown.size() - seconds.size()), seconds);
        clocked.device.insertNoValue();
        QCOMPARE(soleRow(), qMin(seconds.last() + 1, qint64(4294967295)));
    }

private:
    static qint64 soleRow()
    {
        const QList<RecordedRow> rows = takeRecordedRows();
        return rows.size() == 1 ? qint64(rows.first().time) : -rows.size();
    }
};

QTEST_GUILESS_MAIN(tst_RecordedTimes)
#include "tst_RecordedTimes.moc"
