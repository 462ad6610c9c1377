#include "json/QJsonValueRef.h"

namespace json {

namespace {

const QJsonValue *missing()
{
    static const QJsonValue null;
    return &null;
}

} // namespace

QJsonValueRef::QJsonValueRef(const QJsonValue *value) : m_value(value ? value : missing()) {}

QJsonValueRef::operator const QJsonValue &() const
{
    return *m_value;
}

Kind QJsonValueRef::kind() const
{
    return m_value->kind();
}

bool QJsonValueRef::isNull() const
{
    return m_value->isNull();
}

bool QJsonValueRef::toBool() const
{
    return m_value->toBool();
}

int QJsonValueRef::toInt() const
{
    return m_value->toInt();
}

double QJsonValueRef::toDouble() const
{
    return m_value->toDouble();
}

QString QJsonValueRef::toString() const
{
    return m_value->toString();
}

QJsonArray QJsonValueRef::toArray() const
{
    return m_value->toArray();
}

QJsonObject QJsonValueRef::toObject() const
{
    return m_value->toObject();
}

} // namespace json
