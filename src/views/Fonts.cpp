#include "views/Fonts.h"

#include <QFont>
#include <QStringList>

void installFontSubstitutes()
{
    const QString lastResort = QStringLiteral("DejaVu Sans");
    QFont::insertSubstitutions(QStringLiteral("Segoe UI"),
                               {QStringLiteral("Open Sans"), QStringLiteral("Noto Sans"), lastResort});
    QFont::insertSubstitutions(QStringLiteral("Arial"),
                               {QStringLiteral("Liberation Sans"), QStringLiteral("Arimo"), lastResort});
}
