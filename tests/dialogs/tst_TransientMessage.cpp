#include "dialogs/MessageDialog.h"
#include "dialogs/TransientMessage.h"
#include <QGroupBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <memory>

class tst_TransientMessage : public QObject
{
    Q_OBJECT

private slots:
    void messageIsShownWithoutBlocking();
    void textIsShownLetterByLetter();
    void eachMessageHasItsOwnFiveSeconds();
    void messageClosesByItself();
    void lateTimerOfAClosedMessageDoesNothing();
    void messageMayBeDeletedBeforeItsTime();
    void closedMessageLivesUntilItsParentGoes();
    void stormStaysDismissible();
};

namespace {

MessageDialog *show(QWidget &parent, const char *text = "text")
{
    return showTransientMessage(QStringLiteral("ERROR"), QLatin1String(text), &parent);
}

QTimer *timerOf(const MessageDialog *dialog)
{
    return dialog->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
}

/// As if the five seconds were over.
void fire(QTimer *timer)
{
    timer->setInterval(0);
}

} // namespace

void tst_TransientMessage::messageIsShownWithoutBlocking()
{
    QWidget parent;
    MessageDialog *dialog = showTransientMessage(QStringLiteral("WARNING"), QStringLiteral("text"), &parent);
    QVERIFY(dialog->isVisible());
    QVERIFY(dialog->isModal());
    QCOMPARE(dialog->parentWidget(), &parent);
    QCOMPARE(dialog->findChild<QGroupBox *>(QStringLiteral("groupBox_message"))->title(), QStringLiteral("WARNING"));
    QCOMPARE(dialog->findChild<QTextBrowser *>(QStringLiteral("textBrowser"))->toPlainText(), QStringLiteral("text"));
}

/// Names of loggers and files, and what the system says of them, come from outside.
void tst_TransientMessage::textIsShownLetterByLetter()
{
    QWidget parent;
    const MessageDialog *dialog = show(parent, "<b>Oven</b> & \"Attic\": Device Setup Failed.\nPlease retry.");
    QCOMPARE(dialog->findChild<QTextBrowser *>(QStringLiteral("textBrowser"))->toPlainText(),
             QStringLiteral("<b>Oven</b> & \"Attic\": Device Setup Failed.\nPlease retry."));
}

void tst_TransientMessage::eachMessageHasItsOwnFiveSeconds()
{
    QWidget parent;
    MessageDialog *first = show(parent, "first");
    MessageDialog *second = show(parent, "second");
    QVERIFY(first != second);
    for (MessageDialog *dialog : {first, second}) {
        QVERIFY(timerOf(dialog)->isActive());
        QVERIFY(timerOf(dialog)->isSingleShot());
        QCOMPARE(timerOf(dialog)->interval(), 5000);
    }
    fire(timerOf(first));
    QTRY_VERIFY(!first->isVisible());
    QVERIFY(second->isVisible());
    fire(timerOf(second));
    QTRY_VERIFY(!second->isVisible());
}

void tst_TransientMessage::messageClosesByItself()
{
    QWidget parent;
    const MessageDialog *dialog = show(parent);
    QTRY_VERIFY_WITH_TIMEOUT(!dialog->isVisible(), 60000);
}

void tst_TransientMessage::lateTimerOfAClosedMessageDoesNothing()
{
    QWidget parent;
    const MessageDialog *dialog = show(parent);
    QTimer *timer = timerOf(dialog);
    dialog->findChild<QPushButton *>(QStringLiteral("pushButton_close"))->click();
    QVERIFY(!dialog->isVisible());
    fire(timer);
    QTRY_VERIFY(!timer->isActive());
    QVERIFY(!dialog->isVisible());
}

void tst_TransientMessage::messageMayBeDeletedBeforeItsTime()
{
    QWidget parent;
    fire(timerOf(show(parent)));
    delete parent.findChild<MessageDialog *>();
    QCoreApplication::processEvents();

    auto gone = std::make_unique<QWidget>();
    fire(timerOf(show(*gone)));
    gone.reset();
    QCoreApplication::processEvents();
}

void tst_TransientMessage::closedMessageLivesUntilItsParentGoes()
{
    auto parent = std::make_unique<QWidget>();
    MessageDialog *dialog = show(*parent);
    QSignalSpy destroyed(dialog, &QObject::destroyed);
    fire(timerOf(dialog));
    QTRY_VERIFY(!dialog->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(destroyed.count(), 0);
    parent.reset();
    QCOMPARE(destroyed.count(), 1);
}

void tst_TransientMessage::stormStaysDismissible()
{
    QWidget parent;
    parent.show();
    constexpr int storm = 64;
    for (int i = 0; i < storm; ++i)
        timerOf(show(parent))->stop();
    // The one on top takes the key that closes it and gives way to the next, down to the window itself.
    for (int i = 0; i < storm; ++i) {
        QWidget *top = QApplication::activeModalWidget();
        QVERIFY(top);
        QTest::keyClick(top, Qt::Key_Return);
        QVERIFY(!top->isVisible());
    }
    QVERIFY(!QApplication::activeModalWidget());
}

QTEST_MAIN(tst_TransientMessage)
#include "tst_TransientMessage.moc"
