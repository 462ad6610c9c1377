#pragma once

#include <QString>

namespace json {

class QJsonValue;

/// The compact text of @p value: no line breaks, one blank after the colon of a member.
QString serialise(const QJsonValue &value);

} // namespace json
