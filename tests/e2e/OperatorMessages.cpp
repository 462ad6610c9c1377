#include "Operator.h"

#include <QApplication>
#include <QPointer>
#include <QTest>
#include <QTextEdit>
#include <memory>

namespace {

/// Keeps each message that comes onto the screen, until it is taken.
class Inbox : public QObject
{
public:
    struct Message
    {
        QString text;
        QPointer<QWidget> dialog;
    };

    Inbox() { qApp->installEventFilter(this); }

    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::Show && object->objectName() == QLatin1String("MessageDialog")) {
            const auto *browser = object->findChild<QTextEdit *>(QStringLiteral("textBrowser"));
            messages.append({browser->toPlainText(), qobject_cast<QWidget *>(object)});
        }
        return false;
    }

    QList<Message> messages;
};

std::unique_ptr<Inbox> theInbox;

} // namespace

void Operator::awaitMessages()
{
    theInbox = std::make_unique<Inbox>();
}

QString Operator::message()
{
    return theInbox->messages.value(0).text;
}

bool Operator::closeMessage()
{
    if (theInbox->messages.isEmpty())
        return false;
    const QPointer<QWidget> dialog = theInbox->messages.takeFirst().dialog;
    const auto closes = [&dialog] {
        if (!dialog || !dialog->isVisible())
            return true;
        auto *button = dialog->findChild<QWidget *>(QStringLiteral("pushButton_close"));
        return tryClick(button, button->rect().center());
    };
    return QTest::qWaitFor(closes, patienceMs);
}
