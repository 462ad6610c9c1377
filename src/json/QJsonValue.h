#pragma once

#include "json/Kind.h"
#include "json/QJsonArray.h"
#include "json/QJsonObject.h"

#include <QString>
#include <variant>

namespace json {

/// One value of any kind. A conversion to another kind than the value's own gives that kind's empty or zero value.
class QJsonValue
{
public:
    QJsonValue() = default;
    QJsonValue(bool value) : m_data(value) {}
    QJsonValue(int value) : m_data(static_cast<double>(value)) {}
    QJsonValue(double value) : m_data(value) {}
    QJsonValue(const QString &value) : m_data(value) {}
    QJsonValue(QString &&value) noexcept : m_data(std::move(value)) {}
    QJsonValue(const QJsonArray &value) : m_data(value) {}
    QJsonValue(QJsonArray &&value) noexcept : m_data(std::move(value)) {}
    QJsonValue(const QJsonObject &value) : m_data(value) {}
    QJsonValue(QJsonObject &&value) noexcept : m_data(std::move(value)) {}
    /// A pointer would become a boolean.
    QJsonValue(const void *) = delete;

    Kind kind() const { return static_cast<Kind>(m_data.index()); }
    bool isNull() const { return kind() == Kind::Null; }

    bool toBool() const;
    /// Without the fraction; 0 for a number that no int can hold.
    int toInt() const;
    double toDouble() const;
    QString toString() const;
    QJsonArray toArray() const;
    QJsonObject toObject() const;

    /// Calls @p visitor with the value in its own type; std::monostate stands for null.
    template <typename Visitor>
    decltype(auto) visit(Visitor &&visitor) const
    {
        return std::visit(std::forward<Visitor>(visitor), m_data);
    }

    bool operator==(const QJsonValue &other) const { return m_data == other.m_data; }
    bool operator!=(const QJsonValue &other) const { return m_data != other.m_data; }

private:
    /// In the order of Kind.
    std::variant<std::monostate, bool, double, QString, QJsonArray, QJsonObject> m_data;
};

/// One entry of an object.
struct Member
{
    QString key;
    QJsonValue value;
};
inline bool operator==(const Member &a, const Member &b)
{
    return a.key == b.key && a.value == b.value;
}

} // namespace json
