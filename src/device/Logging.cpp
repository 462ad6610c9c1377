#include "device/Logging.h"

Q_LOGGING_CATEGORY(deviceLog, "sorvanto.device")
