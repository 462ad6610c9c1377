#pragma once

#include <QDebug>
#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(dialogsLog)

/// One diagnostic line of this layer, its texts and numbers joined as they are. A macro, so that a silenced category
/// costs no formatting.
#define logDialogs() qCDebug(dialogsLog).noquote().nospace()
