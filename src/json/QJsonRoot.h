#pragma once

#include "json/Kind.h"

namespace json {

/// What a document can be: the base of array and object.
class QJsonRoot
{
public:
    virtual ~QJsonRoot();
    /// Kind::Array or Kind::Object.
    virtual Kind kind() const = 0;

protected:
    QJsonRoot() = default;
    QJsonRoot(const QJsonRoot &) = default;
    QJsonRoot(QJsonRoot &&) noexcept = default;
    QJsonRoot &operator=(const QJsonRoot &) = default;
    QJsonRoot &operator=(QJsonRoot &&) noexcept = default;
};

} // namespace json
