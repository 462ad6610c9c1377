#include "chart/DateTicks.h"

#include <QDateTime>
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace chart {

namespace {

constexpr qint64 minute = 60;
constexpr qint64 hour = 60 * minute;
constexpr qint64 day = 24 * hour;
constexpr qint64 week = 7 * day;
constexpr qint64 shortestMonth = 28 * day;
constexpr int lastYear = 9999;

/// A round distance of time: so many seconds or so many months.
struct Step
{
    qint64 seconds = 0;
    int months = 0;

    double length() const { return double(months > 0 ? months * shortestMonth : seconds); }
    bool divides(const Step &other) const
    {
        if (months > 0)
            return other.months > 0 && other.months % months == 0;
        return other.months > 0 ? day % seconds == 0 : other.seconds % seconds == 0;
    }
};

constexpr std::array<Step, 36> steps{
    {{1, 0},       {2, 0},          {5, 0},          {10, 0},          {15, 0},          {30, 0},
     {minute, 0},  {2 * minute, 0}, {5 * minute, 0}, {10 * minute, 0}, {15 * minute, 0}, {30 * minute, 0},
     {hour, 0},    {2 * hour, 0},   {3 * hour, 0},   {6 * hour, 0},    {12 * hour, 0},   {day, 0},
     {2 * day, 0}, {week, 0},       {2 * week, 0},   {0, 1},           {0, 2},           {0, 3},
     {0, 6},       {0, 12},         {0, 24},         {0, 60},          {0, 120},         {0, 240},
     {0, 600},     {0, 1200},       {0, 2400},       {0, 6000},        {0, 12000},       {0, 24000}}};

/// Local wall-clock time of the seconds within a range. Time zones make that dear, so what is the same for the whole
/// range is asked for once.
class LocalTime
{
public:
    explicit LocalTime(const Range &range)
    {
        const int first = ask(range.low);
        if (range.high - range.low < double(week) && first == ask(range.high))
            m_constant = first;
    }

    int offset(double seconds) const { return m_constant ? *m_constant : ask(seconds); }

    /// The first second with another offset than @p before has; @p after has one.
    static double change(double before, double after)
    {
        const int offset = ask(before);
        before = std::floor(before);
        while (after - before > 1) {
            const double middle = std::floor((before + after) / 2);
            (ask(middle) == offset ? before : after) = middle;
        }
        return after;
    }

private:
    static int ask(double seconds)
    {
        return QDateTime::fromSecsSinceEpoch(qint64(std::floor(seconds))).offsetFromUtc();
    }

    std::optional<int> m_constant;
};

/// The first moment from @p seconds on at which the local clock shows a multiple of the step.
double roundUp(double seconds, qint64 step, const LocalTime &local)
{
    // The first of January 1970 was a Thursday; weeks begin on Mondays.
    const double origin = step % week == 0 ? 4.0 * day : 0;
    for (;;) {
        const int offset = local.offset(seconds);
        const double aligned = std::ceil((seconds + offset - origin) / double(step)) * double(step) + origin - offset;
        if (local.offset(aligned) == offset)
            return aligned;
        // From the change of the clocks on other moments are round.
        seconds = LocalTime::change(seconds, aligned);
    }
}

/// Whether the local clock, set back since, showed the same less than a step before.
bool isRepeated(double seconds, qint64 step, const LocalTime &local)
{
    const int offset = local.offset(seconds);
    const int back = local.offset(seconds - double(step)) - offset;
    return back > 0 && back < step && local.offset(seconds - back) == offset + back;
}

std::vector<double> everySeconds(const Range &range, qint64 step)
{
    const LocalTime local({range.low - double(step), range.high});
    std::vector<double> ticks;
    double at = roundUp(range.low, step, local);
    while (at <= range.high) {
        if (!isRepeated(at, step, local))
            ticks.push_back(at);
        at = roundUp(at + 1, step, local);
    }
    return ticks;
}

std::vector<double> everyMonths(const Range &range, int months)
{
    const QDate first = QDateTime::fromSecsSinceEpoch(qint64(std::floor(range.low))).date();
    const int firstMonth = (first.year() * 12 + first.month() - 1) / months * months;
    std::vector<double> ticks;
    for (int month = firstMonth; month / 12 <= lastYear; month += months) {
        const QDate date(month / 12, month % 12 + 1, 1);
        const auto at = double(date.startOfDay().toSecsSinceEpoch());
        if (at > range.high)
            break;
        if (date.isValid() && at >= range.low)
            ticks.push_back(at);
    }
    return ticks;
}

std::vector<double> every(const Range &range, const Step &step)
{
    return step.months > 0 ? everyMonths(range, step.months) : everySeconds(range, step.seconds);
}

/// What our calendar can name: the years 1 to 9999.
bool isOnCalendar(const Range &range)
{
    constexpr double first = -62135596800.0;
    constexpr double last = 253402300799.0;
    return range.low >= first && range.high <= last;
}

} // namespace

DateTicks dateTicks(const Range &range, double length, double majorSpacing, double minorSpacing)
{
    if (!(range.low < range.high) || !isOnCalendar(range) || length <= 0)
        return {};
    const double secondsPerPixel = (range.high - range.low) / length;
    const auto firstFrom = [&](double spacing, auto &&suits) {
        return std::find_if(steps.cbegin(), steps.cend(), [&](const Step &step) {
            return step.length() >= spacing * secondsPerPixel && suits(step);
        });
    };
    const auto major = firstFrom(majorSpacing, [](const Step &) { return true; });
    if (major == steps.cend())
        return {};
    const auto minor = firstFrom(minorSpacing, [&](const Step &step) { return step.divides(*major); });
    DateTicks ticks{every(range, *major), {}};
    const std::vector<double> raster = every(range, *minor);
    std::set_difference(raster.cbegin(), raster.cend(), ticks.major.cbegin(), ticks.major.cend(),
                        std::back_inserter(ticks.minor));
    return ticks;
}

} // namespace chart
