#include "loggersim/Curve.h"

#include <QtMath>
#include <array>

namespace loggersim {

Climate climateOf(int number)
{
    static const std::array<Climate, 8> places{{
        {QStringLiteral("Cold room"), 4.0, 0.8, 68, 4},
        {QStringLiteral("Greenhouse"), 24.5, 3.0, 71, 8},
        {QStringLiteral("Server room"), 21.5, 1.2, 42, 3},
        {QStringLiteral("Archive"), 18.0, 0.6, 47, 2},
        {QStringLiteral("Freezer"), -18.5, 1.5, 35, 4},
        {QStringLiteral("Clean room"), 21.0, 0.5, 45, 2},
        {QStringLiteral("Warehouse"), 15.5, 2.5, 55, 7},
        {QStringLiteral("Laboratory"), 22.0, 1.0, 50, 5},
    }};
    const int count = static_cast<int>(places.size());
    Climate climate = places[static_cast<size_t>(number % count)];
    climate.place += QLatin1Char(' ') + QString::number(number / count + 1);
    return climate;
}

QByteArray Reading::toText() const
{
    return QByteArray::number(temperature / 100.0, 'f', 2) + ',' + QByteArray::number(humidity / 100.0, 'f', 2);
}

bool operator==(const Reading &a, const Reading &b)
{
    return a.temperature == b.temperature && a.humidity == b.humidity;
}

Curve::Curve(const Climate &climate, quint32 seed)
    : m_climate(climate), m_random(seed), m_phase((seed * 2654435761U % 1000U) / 1000.0 * 2 * M_PI)
{
}

double Curve::wave(double phase, double period) const
{
    return qSin(m_phase + phase + 2 * M_PI * m_count / period);
}

int Curve::noise()
{
    return static_cast<int>(m_random() % 7) - 3;
}

Reading Curve::next()
{
    if (m_held)
        return *m_held;
    if (m_timesLeft > 0) {
        --m_timesLeft;
        return m_last;
    }
    m_timesLeft = m_times - 1;
    ++m_count;
    const double temperature = m_climate.temperature + m_climate.temperatureSwing * 0.8 * wave(0, 900) +
                               m_climate.temperatureSwing * 0.15 * wave(1, 130);
    const double humidity = m_climate.humidity - m_climate.humiditySwing * 0.8 * wave(0.4, 900) +
                            m_climate.humiditySwing * 0.15 * wave(2, 170);
    Reading reading{qRound(temperature * 100) + noise() + m_offset.temperature,
                    qRound(humidity * 100) + noise() + m_offset.humidity};
    // The recording keeps equal rows of one second only once, so every reading must differ from the one before, also
    // when the value of either channel is missing.
    if (reading.temperature == m_last.temperature)
        ++reading.temperature;
    if (reading.humidity == m_last.humidity)
        ++reading.humidity;
    m_last = reading;
    return reading;
}

void Curve::repeat(int times)
{
    m_times = times;
    m_timesLeft = 0;
}

void Curve::hold(const Reading &reading)
{
    m_held = reading;
}

void Curve::shift(const Reading &offset)
{
    m_held.reset();
    m_timesLeft = 0;
    m_offset = offset;
}

void Curve::resume()
{
    m_held.reset();
    m_timesLeft = 0;
    m_offset = {};
}

} // namespace loggersim
