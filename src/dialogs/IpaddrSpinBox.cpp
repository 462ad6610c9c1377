#include "dialogs/IpaddrSpinBox.h"

#include <QKeyEvent>

IpaddrSpinBox::IpaddrSpinBox(QWidget *parent) : QSpinBox(parent) {}

void IpaddrSpinBox::keyReleaseEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Period)
        emit nextStep();
}
