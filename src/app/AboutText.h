#pragma once

#include <QString>

/// The rich text of the About box.
QString aboutText();
