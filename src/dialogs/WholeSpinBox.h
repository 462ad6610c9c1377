#pragma once

#include "dialogs/NumberBox.h"

#include <QSpinBox>

/// A whole number without a sign.
class WholeSpinBox : public NumberBox<QSpinBox>
{
public:
    explicit WholeSpinBox(QWidget *parent = nullptr);

protected:
    QValidator::State validate(QString &text, int &position) const override;
    int valueFromText(const QString &text) const override;
};
