#include "dialogs/Logging.h"

Q_LOGGING_CATEGORY(dialogsLog, "sorvanto.dialogs")
