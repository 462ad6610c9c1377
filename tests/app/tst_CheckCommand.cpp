#include "store/Recording.h"

#include <QFile>
#include <QProcess>
#include <QtTest>

/// The program asked to look through a recording, on a machine without a display.
class tst_CheckCommand : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_recording = std::make_unique<Recording>();
        const auto store = m_recording->open();
        QVERIFY(store);
        for (quint32 i = 0; i < 1000; ++i)
            InsertSerialData::enqueue(row("A1", 1700000000 + i));
        store->insertNow();
    }

    void wholeRecording()
    {
        QCOMPARE(check(), 0);
        QCOMPARE(m_said, QString("The recording is whole: 1000 readings.\n"));
        QVERIFY2(m_progress.contains(QLatin1Char('%')), qPrintable(m_progress));
    }

    void tornRecording()
    {
        QFile file(m_recording->file());
        QVERIFY(file.resize(file.size() - 4096));
        QCOMPARE(check(), 1);
        QVERIFY2(m_said.contains(" readings can be read.\n"), qPrintable(m_said));
    }

    void damageInTheMiddle()
    {
        QVERIFY(overwrite(5 * 4096 + 8, QByteArray(64, '\xff')));
        QCOMPARE(check(), 1);
    }

    void noRecording()
    {
        QVERIFY(overwrite(0, QByteArray(4096, 'x')));
        QCOMPARE(check(), 3);
        QCOMPARE(check(m_recording->file() + QStringLiteral(".missing")), 3);
        QCOMPARE(check(m_recording->folder()), 3);
        const OtherProgram other(m_recording->file() + QStringLiteral(".other"));
        QVERIFY(other.exec("create table notes (text)"));
        QCOMPARE(check(m_recording->file() + QStringLiteral(".other")), 3);
    }

    void wrongArguments() { QCOMPARE(check({}), 2); }

    void nothingIsChanged()
    {
        QFile file(m_recording->file());
        QVERIFY(file.resize(file.size() - 4096));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray before = file.readAll();
        QCOMPARE(check(), 1);
        QVERIFY(file.seek(0));
        QCOMPARE(file.readAll(), before);
        QCOMPARE(QDir(m_recording->folder()).entryList(QDir::Files), QStringList("Kitchen.dat"));
    }

private:
    int check() { return check(m_recording->file()); }
    int check(const QString &file)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QLatin1String(name));
        QProcess program;
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(STATION), {QStringLiteral("--check"), file});
        if (!program.waitForFinished())
            qFatal("the program did not end: %s", qPrintable(program.errorString()));
        m_said = QString::fromLocal8Bit(program.readAllStandardOutput());
        m_progress = QString::fromLocal8Bit(program.readAllStandardError());
        return program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1;
    }
    bool overwrite(qint64 offset, const QByteArray &bytes) const
    {
        QFile file(m_recording->file());
        return file.open(QIODevice::ReadWrite) && file.seek(offset) && file.write(bytes) == bytes.size();
    }

    std::unique_ptr<Recording> m_recording;
    QString m_said;
    QString m_progress;
};

QTEST_GUILESS_MAIN(tst_CheckCommand)
#include "tst_CheckCommand.moc"
