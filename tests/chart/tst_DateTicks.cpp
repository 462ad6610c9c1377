#include "chart/DateTicks.h"

#include <QDateTime>
#include <QLocale>
#include <QTest>
#include <cmath>

using namespace chart;

namespace {

double at(const QString &local)
{
    return double(QDateTime::fromString(local, QStringLiteral("yyyy-MM-dd hh:mm:ss")).toSecsSinceEpoch());
}

/// A time zone by rule for as long as it lives.
class TimeZone
{
public:
    explicit TimeZone(const QByteArray &rule) : m_before(qgetenv("TZ")) { qputenv("TZ", rule); }
    ~TimeZone() { qputenv("TZ", m_before); }
    TimeZone(const TimeZone &) = delete;
    TimeZone &operator=(const TimeZone &) = delete;

private:
    const QByteArray m_before;
};

constexpr qint64 halfHour = 1800;
constexpr qint64 day = 48 * halfHour;
constexpr qint64 week = 7 * day;
const QList<qint64> steps{1,    2,    5,    10,    15,    30,    60,  120,     300,  600,     900,
                          1800, 3600, 7200, 10800, 21600, 43200, day, 2 * day, week, 2 * week};

/// When the clocks are changed in 2023, or its middle where they never are.
QList<qint64> changesOfClock()
{
    const auto offset = [](qint64 seconds) {
        return QDateTime::fromSecsSinceEpoch(seconds).offsetFromUtc();
    };
    const qint64 newYear = QDateTime({2023, 1, 1}, {0, 0}, Qt::UTC).toSecsSinceEpoch();
    QList<qint64> changes;
    for (qint64 at = newYear; at < newYear + 365 * day; at += halfHour) {
        if (offset(at) != offset(at - 1))
            changes << at;
    }
    return changes.isEmpty() ? QList<qint64>{newYear + 183 * day} : changes;
}

/// What the clock on the wall shows, in seconds since it showed the first Monday of 1970.
qint64 wallClock(qint64 seconds)
{
    const QDateTime local = QDateTime::fromSecsSinceEpoch(seconds);
    return QDate(1970, 1, 5).daysTo(local.date()) * day + local.time().msecsSinceStartOfDay() / 1000;
}

/// Every moment at which the clock on the wall shows a multiple of the step, unless it showed the same less than a step
/// before.
std::vector<double> roundTimes(const Range &range, qint64 step)
{
    const qint64 raster = std::min(step, halfHour);
    // Days are counted from another origin than weeks.
    const qint64 origin = step % week == 0 ? 0 : 4 * day;
    QHash<qint64, qint64> lastShown;
    std::vector<double> times;
    for (qint64 at = (qint64(range.low) - step) / raster * raster; double(at) <= range.high; at += raster) {
        const qint64 shown = wallClock(at) + origin;
        const bool again = lastShown.contains(shown) && at - lastShown[shown] < step;
        if (!again)
            lastShown[shown] = at;
        if (shown % step == 0 && !again && double(at) >= range.low)
            times.push_back(double(at));
    }
    return times;
}

QString texts(const std::vector<double> &ticks, const QString &format)
{
    QStringList result;
    for (const double tick : ticks)
        result << QLocale::c().toString(QDateTime::fromSecsSinceEpoch(qint64(tick)), format);
    return result.join(' ');
}

} // namespace

class tst_DateTicks : public QObject
{
    Q_OBJECT

private slots:
    void majorTicksAreRoundLocalTimes_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<int>("length");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("labels");

        QTest::newRow("4 minutes") << "2023-11-14 22:09:20"
                                   << "2023-11-14 22:13:20" << 524 << "hh:mm:ss"
                                   << "22:10:00 22:11:00 22:12:00 22:13:00";
        QTest::newRow("4 minutes, wide") << "2023-11-14 22:09:20"
                                         << "2023-11-14 22:13:20" << 700 << "hh:mm:ss"
                                         << "22:09:30 22:10:00 22:10:30 22:11:00 22:11:30 22:12:00 22:12:30 22:13:00";
        QTest::newRow("40 minutes") << "2023-11-14 21:33:20"
                                    << "2023-11-14 22:13:20" << 524 << "hh:mm"
                                    << "21:40 21:50 22:00 22:10";
        QTest::newRow("40 hours") << "2023-11-13 06:13:20"
                                  << "2023-11-14 22:13:20" << 524 << "dd.hh"
                                  << "13.12 13.18 14.00 14.06 14.12 14.18";
        QTest::newRow("4 days: local midnight") << "2023-11-10 06:00:00"
                                                << "2023-11-14 06:00:00" << 524 << "dd.hh"
                                                << "11.00 12.00 13.00 14.00";
        QTest::newRow("weeks begin on Mondays") << "2023-11-01 00:00:00"
                                                << "2023-11-30 00:00:00" << 524 << "ddd.dd"
                                                << "Mon.06 Mon.13 Mon.20 Mon.27";
        QTest::newRow("months") << "2023-01-15 00:00:00"
                                << "2023-07-15 00:00:00" << 524 << "MM-dd hh"
                                << "02-01 00 03-01 00 04-01 00 05-01 00 06-01 00 07-01 00";
        QTest::newRow("years") << "2001-06-01 00:00:00"
                               << "2023-07-15 00:00:00" << 524 << "yyyy"
                               << "2005 2010 2015 2020";
        QTest::newRow("the clock goes forward") << "2023-03-25 22:00:00"
                                                << "2023-03-26 08:00:00" << 524 << "hh"
                                                << "22 00 04 06 08";
        QTest::newRow("the clock goes back") << "2023-10-28 23:00:00"
                                             << "2023-10-29 07:00:00" << 700 << "hh"
                                             << "23 00 01 02 02 03 04 05 06 07";
    }

    void majorTicksAreRoundLocalTimes()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(int, length);
        QFETCH(QString, format);
        const DateTicks ticks = dateTicks({at(from), at(to)}, length, 75, 15);
        QTEST(texts(ticks.major, format), "labels");
    }

    void roundTimesInEveryZone_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<qint64>("step");
        const QList<QPair<const char *, const char *>> zones{
            {"no change", "JST-9"},
            {"an hour in spring", "CET-1CEST,M3.5.0,M10.5.0/3"},
            {"half-hour offset", "ACST-9:30ACDT,M10.1.0,M4.1.0/3"},
            {"half-hour offset, no change", "IST-5:30"},
            {"half an hour in spring", "LHST-10:30LHDT-11,M10.1.0,M4.1.0"},
            {"at midnight, west of London", "CST5CDT,M3.2.0/0,M11.1.0/1"},
        };
        for (const auto &[name, zone] : zones) {
            for (const qint64 step : steps)
                QTest::addRow("%s, %lld s", name, step) << QByteArray(zone) << step;
        }
    }

    void roundTimesInEveryZone()
    {
        QFETCH(QByteArray, zone);
        QFETCH(qint64, step);
        const TimeZone there(zone);
        constexpr int intervals = 8;
        constexpr int spacing = 75;
        for (const qint64 change : changesOfClock()) {
            for (const double before : {0.0, 0.3, 1.0, 4.9, 8.0}) {
                const double from = double(change) - std::round(before * double(step));
                const Range range{from, from + double(intervals * step)};
                // A little less room than a step has, so that it is just this step.
                const DateTicks ticks = dateTicks(range, intervals * spacing, spacing - 0.1, spacing - 0.1);
                const QString format = QStringLiteral("MM-dd hh:mm:ss t");
                QCOMPARE(texts(ticks.major, format), texts(roundTimes(range, step), format));
            }
        }
    }

    void monthsBeginAtMidnight_data()
    {
        QTest::addColumn<int>("months");
        for (const int months : {1, 2, 3, 6, 12, 24, 60, 120, 240})
            QTest::addRow("%d months", months) << months;
    }

    void monthsBeginAtMidnight()
    {
        QFETCH(int, months);
        for (const char *zone : {"JST-9", "CET-1CEST,M3.5.0,M10.5.0/3", "ACST-9:30ACDT,M10.1.0,M4.1.0/3"}) {
            const TimeZone there(zone);
            QStringList wanted;
            for (int month = 2020 * 12 / months * months + months; wanted.size() < 8; month += months)
                wanted << QDate(month / 12, month % 12 + 1, 1).toString("yyyy-MM-dd 00:00:00");
            const Range range{at(wanted.first()) - 86400, at(wanted.last()) + 86400};
            const double shortestMonth = 28 * 86400.0;
            const double length = (range.high - range.low) / (months * shortestMonth) * 75;
            const DateTicks ticks = dateTicks(range, length, 74.9, 74.9);
            QCOMPARE(texts(ticks.major, "yyyy-MM-dd hh:mm:ss"), wanted.join(' '));
        }
    }

    void ticksKeepTheirDistances_data()
    {
        QTest::addColumn<double>("span");
        for (double span = 3; span < 4e9; span *= 1.7)
            QTest::addRow("%.0f s", span) << span;
    }

    void ticksKeepTheirDistances()
    {
        QFETCH(double, span);
        constexpr int length = 740;
        const double from = at("2023-11-14 21:33:20") - span;
        const DateTicks ticks = dateTicks({from, from + span}, length, 75, 15);
        const double pixel = span / length;
        std::vector<double> all = ticks.major;
        all.insert(all.end(), ticks.minor.cbegin(), ticks.minor.cend());
        std::sort(all.begin(), all.end());
        // Where the clocks are changed, and at the ends of months, a tick may come up to a day early.
        const double tolerance = span > 7 * 86400.0 ? 0.9 : 1;
        for (size_t i = 1; i < all.size(); ++i)
            QVERIFY(all[i] - all[i - 1] >= 15 * pixel * tolerance);
        for (size_t i = 1; i < ticks.major.size(); ++i)
            QVERIFY(ticks.major[i] - ticks.major[i - 1] >= 75 * pixel * tolerance);
        QVERIFY(all.empty() || (all.front() >= from && all.back() <= from + span));
    }

    void minorTicksDivideTheMajorOnes()
    {
        const DateTicks ticks = dateTicks({at("2023-11-14 22:09:20"), at("2023-11-14 22:10:40")}, 200, 75, 15);
        QCOMPARE(texts(ticks.major, "mm:ss"), QString("09:30 10:00 10:30"));
        QCOMPARE(texts(ticks.minor, "mm:ss"), QString("09:20 09:40 09:50 10:10 10:20 10:40"));
    }

    void impossibleRangesHaveNoTicks_data()
    {
        QTest::addColumn<double>("from");
        QTest::addColumn<double>("to");
        QTest::addColumn<double>("length");
        QTest::newRow("empty") << 100.0 << 100.0 << 500.0;
        QTest::newRow("wrong way round") << 200.0 << 100.0 << 500.0;
        QTest::newRow("beyond the calendar") << 1e12 << 2e12 << 500.0;
        QTest::newRow("beyond all numbers") << -1.7e308 << 1.7e308 << 500.0;
        QTest::newRow("no room") << 100.0 << 200.0 << 0.0;
    }

    void impossibleRangesHaveNoTicks()
    {
        QFETCH(double, from);
        QFETCH(double, to);
        QFETCH(double, length);
        const DateTicks ticks = dateTicks({from, to}, length, 75, 15);
        QVERIFY(ticks.major.empty());
        QVERIFY(ticks.minor.empty());
    }

    void theWholeCalendarHasTicks()
    {
        QVERIFY(!dateTicks({-62135596800.0, 253402300799.0}, 740, 75, 15).major.empty());
    }
};

QTEST_APPLESS_MAIN(tst_DateTicks)
#include "tst_DateTicks.moc"
