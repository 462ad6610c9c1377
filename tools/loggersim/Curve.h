#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <random>

namespace loggersim {

/// What is usual at the place where a logger hangs; temperatures in °C, humidity in %RH.
struct Climate
{
    QString place;
    double temperature = 21;
    double temperatureSwing = 1.5;
    double humidity = 45;
    double humiditySwing = 6;
};

/// A believable place for the logger with this number (from 0); every one has a name of its own.
Climate climateOf(int number);

/// One reading of both channels, in hundredths so that two decimals are exact.
struct Reading
{
    int temperature = 0;
    int humidity = 0;

    /// "21.50,45.10"
    QByteArray toText() const;
};
bool operator==(const Reading &a, const Reading &b);

/// Slow waves with a little noise around a climate. The readings depend on the climate, on a seed and their number
/// only, and no two successive ones are equal in any channel unless they are held or repeated.
class Curve
{
public:
    Curve(const Climate &climate, quint32 seed);

    Reading next();

    /// Every new reading comes @p times in a row, as from a logger whose surroundings hardly change.
    void repeat(int times);
    /// Every further reading is this one.
    void hold(const Reading &reading);
    /// Shifts every further reading.
    void shift(const Reading &offset);
    /// Ends holding and shifting.
    void resume();

private:
    double wave(double phase, double period) const;
    int noise();

    Climate m_climate;
    std::minstd_rand m_random;
    double m_phase;
    int m_count = 0;
    int m_times = 1;
    int m_timesLeft = 0; ///< how often the last reading is still to come
    Reading m_last;
    Reading m_offset;
    std::optional<Reading> m_held;
};

} // namespace loggersim
