#include "dialogs/TransientMessage.h"

#include "dialogs/MessageDialog.h"
#include "dialogs/PlainToolTip.h"

#include <QTimer>

MessageDialog *showTransientMessage(const QString &title, const QString &text, QWidget *parent)
{
    auto *dialog = new MessageDialog(title, plainToolTip(text), parent);
    auto *timer = new QTimer(dialog);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, dialog, &QWidget::close);
    timer->start(transientMessageMs);
    dialog->show();
    return dialog;
}
