#include "json/QJsonValue.h"

#include <limits>

namespace json {

namespace {

template <typename T, typename Data>
T valueOr(const Data &data, T otherwise = {})
{
    const T *value = std::get_if<T>(&data);
    return value ? *value : otherwise;
}

} // namespace

bool QJsonValue::toBool() const
{
    return valueOr<bool>(m_data);
}

int QJsonValue::toInt() const
{
    // A comparison with NaN is false, so that NaN is no int either.
    constexpr double below = static_cast<double>(std::numeric_limits<int>::min()) - 1;
    constexpr double above = static_cast<double>(std::numeric_limits<int>::max()) + 1;
    const double number = toDouble();
    return number > below && number < above ? static_cast<int>(number) : 0;
}

double QJsonValue::toDouble() const
{
    return valueOr<double>(m_data);
}

QString QJsonValue::toString() const
{
    return valueOr<QString>(m_data);
}

QJsonArray QJsonValue::toArray() const
{
    return valueOr<QJsonArray>(m_data);
}

QJsonObject QJsonValue::toObject() const
{
    return valueOr<QJsonObject>(m_data);
}

} // namespace json
