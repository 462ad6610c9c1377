#pragma once

#include "json/QJsonParseError.h"
#include "json/QJsonRoot.h"

#include <QByteArray>
#include <memory>

namespace json {

/// Containers inside each other that a text may have.
constexpr int maximumNesting = 1024;

/// The document of a UTF-8 text: an array or an object. Null when the text is none; @p error then says why.
/// Half a surrogate pair and bytes that are no UTF-8 become U+FFFD.
std::unique_ptr<QJsonRoot> parse(const QByteArray &text, QJsonParseError *error = nullptr);

} // namespace json
