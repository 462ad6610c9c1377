#pragma once

#include <QDebug>
#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(deviceLog)

/// One diagnostic line of this layer, its texts and numbers joined as they are. A macro, so that a silenced category
/// costs no formatting.
#define logDevice() qCDebug(deviceLog).noquote().nospace()
/// The same for what whoever looks after the computer should know.
#define warnDevice() qCWarning(deviceLog).noquote().nospace()
