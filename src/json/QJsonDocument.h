#pragma once

#include "json/QJsonArray.h"
#include "json/QJsonObject.h"

#include <memory>

namespace json {

/// Keeps what the reader returned.
class QJsonDocument
{
public:
    /// @p root may be null: a document that could not be read.
    explicit QJsonDocument(std::unique_ptr<QJsonRoot> root);

    bool isNull() const;
    bool isObject() const;
    bool isArray() const;
    /// Empty when the document holds no object.
    QJsonObject object() const;
    /// Empty when the document holds no array.
    QJsonArray array() const;

private:
    std::unique_ptr<QJsonRoot> m_root;
};

} // namespace json
