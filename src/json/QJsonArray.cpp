#include "json/QJsonArray.h"

#include "json/QJsonValue.h"

#include <QSharedData>
#include <algorithm>
#include <utility>

namespace json {

struct QJsonArray::Data : QSharedData
{
    std::vector<QJsonValue> values;
};

QJsonArray::QJsonArray() = default;
QJsonArray::QJsonArray(const QJsonArray &) = default;
QJsonArray::QJsonArray(QJsonArray &&) noexcept = default;
QJsonArray &QJsonArray::operator=(const QJsonArray &) = default;
QJsonArray &QJsonArray::operator=(QJsonArray &&) noexcept = default;
QJsonArray::~QJsonArray() = default;

QJsonArray::QJsonArray(std::initializer_list<QJsonValue> values) : QJsonArray(std::vector<QJsonValue>(values)) {}

QJsonArray::QJsonArray(std::vector<QJsonValue> values)
{
    if (!values.empty())
        changeable().values = std::move(values);
}

Kind QJsonArray::kind() const
{
    return Kind::Array;
}

int QJsonArray::count() const
{
    return static_cast<int>(end() - begin());
}

const QJsonValue &QJsonArray::at(int index) const
{
    static const QJsonValue none;
    return index >= 0 && index < count() ? begin()[index] : none;
}

void QJsonArray::append(QJsonValue value)
{
    changeable().values.push_back(std::move(value));
}

void QJsonArray::insert(int index, QJsonValue value)
{
    std::vector<QJsonValue> &values = changeable().values;
    values.insert(values.begin() + std::clamp(index, 0, static_cast<int>(values.size())), std::move(value));
}

const QJsonValue *QJsonArray::begin() const
{
    return m_data ? m_data->values.data() : nullptr;
}

const QJsonValue *QJsonArray::end() const
{
    return m_data ? m_data->values.data() + m_data->values.size() : nullptr;
}

QJsonArray::Data &QJsonArray::changeable()
{
    if (!m_data)
        m_data = new Data;
    return *m_data;
}

bool operator==(const QJsonArray &a, const QJsonArray &b)
{
    return a.begin() == b.begin() || std::equal(a.begin(), a.end(), b.begin(), b.end());
}

bool operator!=(const QJsonArray &a, const QJsonArray &b)
{
    return !(a == b);
}

} // namespace json
