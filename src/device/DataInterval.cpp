#include "device/DataInterval.h"

#include <array>

namespace {

struct Interval
{
    int ms;
    const char *text;
};

constexpr std::array<Interval, 6> intervals{{
    {1000, "1 sec"},
    {5000, "5 sec"},
    {10000, "10 sec"},
    {60000, "1 min"},
    {300000, "5 min"},
    {600000, "10 min"},
}};

} // namespace

qint32 dataIntervalMs = defaultDataIntervalMs;

const QList<int> &selectableIntervals()
{
    static const QList<int> list = [] {
        QList<int> all;
        for (const Interval &interval : intervals)
            all << interval.ms;
        return all;
    }();
    return list;
}

QString intervalText(int ms)
{
    for (const Interval &interval : intervals) {
        if (interval.ms == ms)
            return QString::fromLatin1(interval.text);
    }
    return {};
}
