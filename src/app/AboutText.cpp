#include "app/AboutText.h"

#include "app/StartUp.h"

QString aboutText()
{
    const QString registered(QChar(0x00AE));
    return QStringLiteral("<p><font size=5><b>SORVANTO") + registered + QStringLiteral(" Lite </b></font></p>") +
           QStringLiteral("<p><font size=3>") + versionText() + QStringLiteral("</font></p>") +
           QStringLiteral("<p><font size=3>Updates come the way this program was installed.</font></p>") +
           QStringLiteral("<p><font size=3>Sorvanto Lite is data recording software for OSTRIVANE") + registered +
           QStringLiteral(" ZP Series and TQ480 Series. it supports up to 32 channels data recording, ") +
           QStringLiteral(" data viewer and data-reporter with easy way.</font></p>") +
           QStringLiteral("<p><font size=3></font></p>") +
           QStringLiteral("<p><font size=3>All rights belong to its authors.</font></p>") +
           QStringLiteral("<p style='margin-right:100;'><img width=720 height=326 src=:/img/sorvanto_lite.png></p>");
}
