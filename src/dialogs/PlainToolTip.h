#pragma once

class QString;

/// A text from outside as a tool tip that shows it letter by letter: tool tips take for markup what looks like it.
QString plainToolTip(const QString &text);
