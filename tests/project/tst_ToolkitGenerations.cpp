#include "SampleFiles.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// Stations of both generations of the toolkit may work on the same files.
class tst_ToolkitGenerations : public QObject
{
    Q_OBJECT

private slots:
    void filesOfEachAreRead_data();
    void filesOfEachAreRead();
    void stationsOfBothWriteTheSame_data();
    void stationsOfBothWriteTheSame();
    void filesCrossFromTheOther();
    void filesCrossToTheOther();

private:
    /// Runs the program of the other generation.
    bool otherDoes(const QString &what);

    const QDir m_committed{QStringLiteral(SORVANTO_TEST_DATA)};
    // Set by the run that built both.
    const QString m_other = qEnvironmentVariable("SORVANTO_OTHER_SAMPLEFILES");
    QTemporaryDir m_folder;
    QByteArray m_said;
};

bool tst_ToolkitGenerations::otherDoes(const QString &what)
{
    QProcess other;
    other.setProcessChannelMode(QProcess::MergedChannels);
    other.start(m_other, {what, m_folder.path()});
    const bool finished = other.waitForFinished();
    m_said = finished ? other.readAll() : m_other.toLocal8Bit() + ": " + other.errorString().toLocal8Bit();
    return finished && other.exitStatus() == QProcess::NormalExit && other.exitCode() == 0;
}

void tst_ToolkitGenerations::filesOfEachAreRead_data()
{
    QTest::addColumn<QString>("folder");
    for (const char *name : {"qt5", "qt6"})
        QTest::newRow(name) << m_committed.filePath(QLatin1String(name));
}

void tst_ToolkitGenerations::filesOfEachAreRead()
{
    QFETCH(QString, folder);
    QCOMPARE(SampleFiles::differences(folder), QStringList());
}

void tst_ToolkitGenerations::stationsOfBothWriteTheSame_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("project") << SampleFiles::projectFile();
    QTest::newRow("settings") << SampleFiles::settingsFile();
}

void tst_ToolkitGenerations::stationsOfBothWriteTheSame()
{
    QFETCH(QString, file);
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::write(folder.path()));
    QCOMPARE(contentOf(folder.filePath(file)),
             contentOf(QDir(m_committed.filePath(QStringLiteral("qt6"))).filePath(file)));
}

void tst_ToolkitGenerations::filesCrossFromTheOther()
{
    if (m_other.isEmpty())
        QSKIP("no program of the other generation is at hand");
    QVERIFY2(otherDoes(QStringLiteral("write")), m_said.constData());
    QCOMPARE(SampleFiles::differences(m_folder.path()), QStringList());
}

void tst_ToolkitGenerations::filesCrossToTheOther()
{
    if (m_other.isEmpty())
        QSKIP("no program of the other generation is at hand");
    QVERIFY(SampleFiles::write(m_folder.path()));
    QVERIFY2(otherDoes(QStringLiteral("check")), m_said.constData());
}

QTEST_GUILESS_MAIN(tst_ToolkitGenerations)
#include "tst_ToolkitGenerations.moc"
