#include "dialogs/MessageDialog.h"
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>

class tst_MessageDialog : public QObject
{
    Q_OBJECT

private slots:
    void formIsAsDesigned();
    void titleAndTextAreShown();
    void textIsInterpreted_data();
    void textIsInterpreted();
    void buttonClosesWithoutDeleting();
    void closedDialogGivesItsWindowBack();
    void keyboardCloses_data();
    void keyboardCloses();
};

namespace {

template <typename Widget>
Widget *child(const QWidget &window, const char *name)
{
    return window.findChild<Widget *>(QLatin1String(name));
}

} // namespace

void tst_MessageDialog::formIsAsDesigned()
{
    const MessageDialog dialog(QStringLiteral("ERROR"), QStringLiteral("text"), nullptr);
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Sorvanto Lite"));
    QCOMPARE(dialog.windowModality(), Qt::ApplicationModal);
    QCOMPARE(dialog.font().family(), QStringLiteral("Segoe UI"));
    const auto *band = child<QFrame>(dialog, "topFrame");
    QVERIFY(band);
    QCOMPARE(band->minimumHeight(), 30);
    QCOMPARE(band->maximumHeight(), 30);
    const auto *logo = child<QLabel>(*band, "label_top");
    QVERIFY(logo);
    QCOMPARE(logo->pixmap(Qt::ReturnByValue).size() / logo->devicePixelRatioF(), QSize(135, 30));
    const auto *button = child<QPushButton>(dialog, "pushButton_close");
    QVERIFY(button);
    QCOMPARE(button->text(), QStringLiteral("CLOSE"));
}

void tst_MessageDialog::titleAndTextAreShown()
{
    const MessageDialog dialog(QStringLiteral("INFORMATION"), QStringLiteral("Enter the Device Name."), nullptr);
    QCOMPARE(child<QGroupBox>(dialog, "groupBox_message")->title(), QStringLiteral("INFORMATION"));
    QCOMPARE(child<QTextBrowser>(dialog, "textBrowser")->toPlainText(), QStringLiteral("Enter the Device Name."));
}

void tst_MessageDialog::textIsInterpreted_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");

    QTest::newRow("plain") << "Device Open Error. Please retry."
                           << "Device Open Error. Please retry.";
    QTest::newRow("line break") << "Loss of network connection.\nPlease retry."
                                << "Loss of network connection.\nPlease retry.";
    QTest::newRow("rich") << "<b>Full</b><br/>disk"
                          << "Full\ndisk";
    QTest::newRow("escaped by the caller") << QStringLiteral("<b>&lt;b&gt;Oven&lt;/b&gt;</b>") << "<b>Oven</b>";
    QTest::newRow("empty") << ""
                           << "";
}

void tst_MessageDialog::textIsInterpreted()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    const MessageDialog dialog(QStringLiteral("ERROR"), text, nullptr);
    QCOMPARE(child<QTextBrowser>(dialog, "textBrowser")->toPlainText(), shown);
}

void tst_MessageDialog::buttonClosesWithoutDeleting()
{
    QWidget parent;
    QPointer<MessageDialog> dialog = new MessageDialog(QStringLiteral("ERROR"), QStringLiteral("text"), &parent);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog));
    child<QPushButton>(*dialog, "pushButton_close")->click();
    QVERIFY(!dialog->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(dialog);
}

void tst_MessageDialog::closedDialogGivesItsWindowBack()
{
    MessageDialog dialog(QStringLiteral("ERROR"), QStringLiteral("text"), nullptr);
    dialog.show();
    QVERIFY(dialog.windowHandle());
    dialog.close();
    QTRY_VERIFY(!dialog.windowHandle());
    dialog.close();
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(child<QTextBrowser>(dialog, "textBrowser")->toPlainText(), QStringLiteral("text"));
}

void tst_MessageDialog::keyboardCloses_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Enter") << Qt::Key_Return;
    QTest::newRow("Space") << Qt::Key_Space;
    QTest::newRow("Escape") << Qt::Key_Escape;
}

void tst_MessageDialog::keyboardCloses()
{
    QFETCH(Qt::Key, key);
    MessageDialog dialog(QStringLiteral("ERROR"), QStringLiteral("text"), nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QTest::keyClick(QApplication::focusWidget(), key);
    QVERIFY(!dialog.isVisible());
}

QTEST_MAIN(tst_MessageDialog)
#include "tst_MessageDialog.moc"
