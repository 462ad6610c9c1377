#include "json/QJsonDocument.h"

#include <utility>

namespace json {

QJsonDocument::QJsonDocument(std::unique_ptr<QJsonRoot> root) : m_root(std::move(root)) {}

bool QJsonDocument::isNull() const
{
    return !m_root;
}

bool QJsonDocument::isObject() const
{
    return m_root && m_root->kind() == Kind::Object;
}

bool QJsonDocument::isArray() const
{
    return m_root && m_root->kind() == Kind::Array;
}

QJsonObject QJsonDocument::object() const
{
    return isObject() ? static_cast<const QJsonObject &>(*m_root) : QJsonObject();
}

QJsonArray QJsonDocument::array() const
{
    return isArray() ? static_cast<const QJsonArray &>(*m_root) : QJsonArray();
}

} // namespace json
