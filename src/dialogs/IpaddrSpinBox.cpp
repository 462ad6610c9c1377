#include "dialogs/IpaddrSpinBox.h"

IpaddrSpinBox::IpaddrSpinBox(QWidget *parent) : WholeSpinBox(parent) {}

void IpaddrSpinBox::keyReleaseEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Period)
        emit nextStep();
}
