#include "dialogs/WholeSpinBox.h"

#include "dialogs/TypedNumber.h"

WholeSpinBox::WholeSpinBox(QWidget *parent) : NumberBox<QSpinBox>(parent) {}

void WholeSpinBox::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Period)
        NumberBox<QSpinBox>::keyPressEvent(event);
}

QValidator::State WholeSpinBox::validate(QString &text, int & /*position*/) const
{
    const auto number = typedWhole(text);
    return stateOf(number && *number >= minimum() && *number <= maximum());
}

int WholeSpinBox::valueFromText(const QString &text) const
{
    return typedWhole(text).value_or(value());
}
