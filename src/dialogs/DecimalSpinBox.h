#pragma once

#include "dialogs/NumberBox.h"

#include <QDoubleSpinBox>

/// A number with a decimal mark, comma or point, which is shown as a point in every locale.
class DecimalSpinBox : public NumberBox<QDoubleSpinBox>
{
public:
    explicit DecimalSpinBox(QWidget *parent = nullptr);

    QValidator::State validate(QString &text, int &position) const override;
    double valueFromText(const QString &text) const override;
};
