#include "dialogs/DecimalSpinBox.h"

#include "dialogs/TypedNumber.h"

DecimalSpinBox::DecimalSpinBox(QWidget *parent) : NumberBox<QDoubleSpinBox>(parent)
{
    setLocale(QLocale::c());
}

QValidator::State DecimalSpinBox::validate(QString &text, int & /*position*/) const
{
    text.replace(QLatin1Char(','), QLatin1Char('.'));
    const auto number = typedDecimal(text, decimals());
    return stateOf(number && *number >= minimum() && *number <= maximum());
}

double DecimalSpinBox::valueFromText(const QString &text) const
{
    return typedDecimal(text, decimals()).value_or(value());
}
