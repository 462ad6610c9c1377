#pragma once

#include "json/QJsonValue.h"

namespace json {

/// What an object has under a key, to be read at once: it must not outlive the next change of the object.
/// A missing member reads like a null value.
class QJsonValueRef
{
public:
    /// @p value is null for a missing member.
    explicit QJsonValueRef(const QJsonValue *value);

    operator const QJsonValue &() const;

    Kind kind() const;
    bool isNull() const;
    bool toBool() const;
    int toInt() const;
    double toDouble() const;
    QString toString() const;
    QJsonArray toArray() const;
    QJsonObject toObject() const;

private:
    const QJsonValue *m_value;
};

} // namespace json
