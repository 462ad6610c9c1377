#include "app/StartUp.h"

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <csignal>

/// A host without a sound device: the operator is told so before anything else happens.
class tst_StartUpWithoutSound : public QObject
{
    Q_OBJECT

private slots:
    void aTerminationSignalClosesTheBox()
    {
        QStringList boxes;
        QTimer watch;
        connect(&watch, &QTimer::timeout, this, [&boxes, &watch] {
            const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            watch.stop();
            boxes << box->windowTitle() + QLatin1Char('|') + box->text();
            ::raise(SIGTERM);
        });
        watch.start(10);
        QCOMPARE(runStation(*qApp), 0);
        QCOMPARE(boxes,
                 QStringList{QStringLiteral("Audio|Raw audio format not supported by backend, cannot play audio!")});
    }
};

QTEST_MAIN(tst_StartUpWithoutSound)
#include "tst_StartUpWithoutSound.moc"
