#pragma once

class QWidget;

/// Gives the widget the program's icon, unless it has that of an ancestor: to decode it for each part of a window would
/// hold up the start.
void ensureWindowIcon(QWidget *widget);
