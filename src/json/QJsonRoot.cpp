#include "json/QJsonRoot.h"

namespace json {

QJsonRoot::~QJsonRoot() = default;

} // namespace json
