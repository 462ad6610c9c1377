#pragma once

#include <QSpinBox>

/// One octet of an IP address: a full stop asks for the next field.
class IpaddrSpinBox : public QSpinBox
{
    Q_OBJECT

public:
    explicit IpaddrSpinBox(QWidget *parent = nullptr);

signals:
    void nextStep();

protected:
    void keyReleaseEvent(QKeyEvent *event) override;
};
