#include "views/WindowIcon.h"

#include "dialogs/SharpPixmap.h"

#include <QIcon>
#include <QWidget>

void ensureWindowIcon(QWidget *widget)
{
    if (widget->windowIcon().isNull())
        widget->setWindowIcon(QIcon(sharpPixmap(QStringLiteral(":/img/I_2.png"))));
}
