#include "device/ConfiguredDevice.h"
#include "dialogs/NetworkSettingDialog.h"

#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QWindow>

class tst_NetworkSettingDialog : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_device.setDeviceInfo({}, {}, {}, QStringLiteral("10.0.0.7"), 4001);
        m_dialog = new NetworkSettingDialog(&m_device, &m_parent);
        m_watch = m_dialog;
    }
    void cleanup() { delete m_watch.data(); }

    void showsAddressAndPort()
    {
        QCOMPARE(label("label_ipaddr")->text(), QStringLiteral("10.0.0.7"));
        QCOMPARE(label("label_port")->text(), QStringLiteral("4001"));
        QCOMPARE(label("label_ipaddr")->textFormat(), Qt::PlainText);
    }

    void portIsWrittenInDigitsAlone()
    {
        m_device.setDeviceInfo({}, {}, {}, QStringLiteral("10.0.0.7"), 65535);
        const NetworkSettingDialog dialog(&m_device, nullptr);
        QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("label_port"))->text(), QStringLiteral("65535"));
    }

    void formIsAsDesigned()
    {
        QCOMPARE(m_dialog->windowTitle(), QStringLiteral("Sorvanto Lite"));
        QVERIFY(m_dialog->isModal());
        QCOMPARE(m_dialog->findChild<QGroupBox *>(QStringLiteral("groupBox_network"))->title(),
                 QStringLiteral("NETWORK"));
        QCOMPARE(label("label_11")->text(), QStringLiteral("PORT"));
        QCOMPARE(label("label_3")->text(), QStringLiteral("IP"));
        const auto *band = m_dialog->findChild<QFrame *>(QStringLiteral("topFrame"));
        QCOMPARE(band->minimumHeight(), 30);
        QCOMPARE(band->maximumHeight(), 30);
        QVERIFY(!label("label_top_logo")->pixmap(Qt::ReturnByValue).isNull());
        QCOMPARE(button()->text(), QStringLiteral("CLOSE"));
    }

    void buttonClosesAndDeletes()
    {
        m_dialog->show();
        button()->click();
        QVERIFY(m_watch);
        QVERIFY(!m_dialog->isVisible());
        QTRY_VERIFY(!m_watch);
    }

    void rejectSlotClosesAndDeletes()
    {
        m_dialog->show();
        m_dialog->slotReject();
        QVERIFY(!m_dialog->isVisible());
        QTRY_VERIFY(!m_watch);
    }

    void windowSystemOnlyHides()
    {
        m_dialog->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_dialog));
        m_dialog->windowHandle()->close();
        QTRY_VERIFY(!m_dialog->isVisible());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(m_watch);
    }

private:
    QLabel *label(const char *name) const { return m_dialog->findChild<QLabel *>(QLatin1String(name)); }
    QPushButton *button() const { return m_dialog->findChild<QPushButton *>(QStringLiteral("pushButton_close")); }

    ConfiguredDevice m_device{QStringLiteral("0200AA000001"), NetworkInterface};
    QWidget m_parent;
    NetworkSettingDialog *m_dialog = nullptr;
    QPointer<NetworkSettingDialog> m_watch; ///< null once the dialog is gone
};

QTEST_MAIN(tst_NetworkSettingDialog)
#include "tst_NetworkSettingDialog.moc"
