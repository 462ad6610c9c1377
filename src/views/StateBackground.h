#pragma once

class QString;
class QWidget;

/// What the background behind a channel's value tells.
enum class StateBackground { NoData, Normal, Alarm };

/// The style sheet of that background.
QString styleSheetOf(StateBackground background);
/// Changes the widget only when it shows another background: a style sheet set again is parsed and polished again.
void showBackground(QWidget *widget, StateBackground background);
