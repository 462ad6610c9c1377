#include "chart/ValueTicks.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>

namespace chart {

namespace {

// Beyond this a difference of two values is no longer a number.
constexpr double largest = 1e300;
// Two ticks closer than this, relative to their size, read the same.
constexpr double resolution = 1e-13;

/// A mantissa of 1, 2 or 5 and a power of ten.
struct Step
{
    int mantissa = 1;
    int exponent = 0;

    double size() const { return multiple(1); }
    /// Divided rather than multiplied by what is not exact: 3 x 0.1 reads 0.3.
    double multiple(double count) const
    {
        return exponent < 0 ? count * mantissa / std::pow(10, -exponent) : count * mantissa * std::pow(10, exponent);
    }
    Step next() const
    {
        if (mantissa == 5)
            return {1, exponent + 1};
        return {mantissa == 1 ? 2 : 5, exponent};
    }
};

Step smallestStepFrom(double least)
{
    Step step{1, std::clamp(int(std::floor(std::log10(least))), -300, 300)};
    while (step.size() < least)
        step = step.next();
    return step;
}

Step firstStep(const Range &range, int intervals)
{
    const double magnitude = std::max(std::abs(range.low), std::abs(range.high));
    const double least = std::max(magnitude * resolution, 1e-290);
    return smallestStepFrom(std::max((range.high - range.low) / intervals, least));
}

Range limited(const Range &range)
{
    return {std::clamp(range.low, -largest, largest), std::clamp(range.high, -largest, largest)};
}

ValueTicks ticks(const Step &step, double first, double last)
{
    ValueTicks result;
    // Rounding up leaves a negative zero, which would read "-0"; with zero added it has no sign.
    for (int i = 0; first + i <= last; ++i)
        result.values.push_back(step.multiple(first + i));
    result.step = step.size();
    result.decimals = std::max(0, -step.exponent);
    return result;
}

bool areDistinct(std::vector<QString> texts)
{
    std::sort(texts.begin(), texts.end());
    return std::adjacent_find(texts.begin(), texts.end()) == texts.end();
}

/// "1.5e+07" as "1.5e7".
QString shortExponent(QString text)
{
    static const QRegularExpression padding(QStringLiteral("e(-?)\\+?0*"));
    return text.replace(padding, QStringLiteral("e\\1"));
}

std::vector<QString> textsOf(const ValueTicks &ticks, char format, int precision)
{
    std::vector<QString> texts;
    for (const double value : ticks.values)
        texts.push_back(shortExponent(QString::number(value, format, precision)));
    return texts;
}

} // namespace

ValueTicks ticksAround(const Range &wanted, int intervals)
{
    const Range range = limited(wanted);
    Step step = firstStep(range, intervals);
    while (std::ceil(range.high / step.size()) - std::floor(range.low / step.size()) > intervals &&
           step.size() < largest)
        step = step.next();
    const double first = std::floor(range.low / step.size());
    return ticks(step, first, std::max(first + 1, std::ceil(range.high / step.size())));
}

ValueTicks ticksWithin(const Range &wanted, int intervals)
{
    const Range range = limited(wanted);
    const Step step = firstStep(range, intervals);
    return ticks(step, std::ceil(range.low / step.size()), std::floor(range.high / step.size()));
}

Range withRoom(const Range &wanted)
{
    constexpr double share = 0.05;
    const Range range = limited(wanted);
    const double magnitude = std::max(std::abs(range.low), std::abs(range.high));
    const double span = range.high - range.low;
    double room = span * share;
    if (span <= magnitude * resolution)
        room = magnitude > 0 ? magnitude * share : 1;
    Range roomy{range.low - room, range.high + room};
    if (range.low > 0)
        roomy.low = std::max(roomy.low, 0.0);
    if (range.high < 0)
        roomy.high = std::min(roomy.high, 0.0);
    return roomy;
}

std::vector<QString> tickTexts(const ValueTicks &ticks, int longest)
{
    constexpr int mostDecimals = 12;
    const auto fits = [longest](const QString &text) {
        return text.size() <= longest;
    };
    if (ticks.decimals <= mostDecimals) {
        std::vector<QString> full = textsOf(ticks, 'f', ticks.decimals);
        if (std::all_of(full.cbegin(), full.cend(), fits))
            return full;
    }
    constexpr int mostDigits = 17;
    std::vector<QString> texts;
    for (int digits = 1; digits <= mostDigits; ++digits) {
        texts = textsOf(ticks, 'g', digits);
        if (areDistinct(texts))
            break;
    }
    return texts;
}

} // namespace chart
