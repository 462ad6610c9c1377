#include "journal/Logging.h"

Q_LOGGING_CATEGORY(lcJournal, "sorvanto.journal")
