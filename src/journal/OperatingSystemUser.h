#pragma once

#include <QString>

/// The login name of whoever runs this program; on a system that does not know it, its number.
QString operatingSystemUser();
