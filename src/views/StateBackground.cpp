#include "views/StateBackground.h"

#include <QWidget>

QString styleSheetOf(StateBackground background)
{
    switch (background) {
    case StateBackground::Normal:
        return QStringLiteral("background-color: qlineargradient(spread:pad, x1:0.372222, y1:0.46, x2:1, y2:1, stop:0 "
                              "rgba(24, 68, 76, 255), stop:1 rgba(43, 132, 130, 255));");
    case StateBackground::Alarm:
        return QStringLiteral("background-color: qlineargradient(spread:pad, x1:0.372222, y1:0.46, x2:1, y2:1, stop:0 "
                              "rgba(145, 27, 66, 255), stop:1 rgba(181, 69, 96, 255));");
    case StateBackground::NoData:
        break;
    }
    return QStringLiteral("background-color: qlineargradient(spread:pad, x1:0.372222, y1:0.46, x2:1, y2:1, stop:0 "
                          "rgba(80, 80, 80, 255), stop:1 rgba(125, 125, 125, 255));");
}

void showBackground(QWidget *widget, StateBackground background)
{
    const QString sheet = styleSheetOf(background);
    if (widget->styleSheet() != sheet)
        widget->setStyleSheet(sheet);
}
