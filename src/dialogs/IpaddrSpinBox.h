#pragma once

#include "dialogs/WholeSpinBox.h"

/// One octet of an IP address: a full stop asks for the next field.
class IpaddrSpinBox : public WholeSpinBox
{
    Q_OBJECT

public:
    explicit IpaddrSpinBox(QWidget *parent = nullptr);

signals:
    void nextStep();

protected:
    void keyReleaseEvent(QKeyEvent *event) override;
};
