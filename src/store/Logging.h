#pragma once

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcStore)
/// What becomes of the rows between the queue and the recording; silent while all is well.
Q_DECLARE_LOGGING_CATEGORY(lcSpool)
