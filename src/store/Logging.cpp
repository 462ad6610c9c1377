#include "store/Logging.h"

Q_LOGGING_CATEGORY(lcStore, "sorvanto.store")
Q_LOGGING_CATEGORY(lcSpool, "sorvanto.spool")
