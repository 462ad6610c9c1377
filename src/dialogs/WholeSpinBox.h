#pragma once

#include "dialogs/NumberBox.h"

#include <QSpinBox>

/// A whole number without a sign; a full stop is no part of it, and typing one does nothing.
class WholeSpinBox : public NumberBox<QSpinBox>
{
public:
    explicit WholeSpinBox(QWidget *parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    QValidator::State validate(QString &text, int &position) const override;
    int valueFromText(const QString &text) const override;
};
