#include "E2eFixture.h"
#include "RecordingReader.h"

#include <QSet>
#include <QTest>

#include <algorithm>

namespace {

const QString quotedKey = QStringLiteral("0200'E2''0042");

/// Some answer late or leave after each answer, but what they serve are readings.
const QStringList &harmless()
{
    static const QStringList faults{QStringLiteral("none"), QStringLiteral("none"), QStringLiteral("slow:400"),
                                    QStringLiteral("closeafter")};
    return faults;
}

const QStringList &hostile()
{
    static const QStringList faults{
        QStringLiteral("garbage"), QStringLiteral("flood"),        QStringLiteral("hugenumbers"),
        QStringLiteral("nan"),     QStringLiteral("manylines:20"), QStringLiteral("quotes"),
        QStringLiteral("binary"),  QStringLiteral("split"),        QStringLiteral("noecho"),
        QStringLiteral("stall"),   QStringLiteral("vanish"),       QStringLiteral("refuse"),
        QStringLiteral("silent")};
    return faults;
}

QList<int> servedSoFar(const E2eFixture &e2e)
{
    QList<int> counts;
    for (int i = 0; i < e2e.loggerCount(); ++i)
        counts += e2e.served(i).count();
    return counts;
}

bool areReadAgain(const E2eFixture &e2e, const QList<int> &since)
{
    const QList<int> counts = servedSoFar(e2e);
    return std::equal(counts.cbegin(), counts.cend(), since.cbegin(),
                      [](int now, int before) { return now >= before + 5; });
}

QString cutOffLine(const loggersim::SimLogger &logger)
{
    return QStringLiteral("[ERROR] TelnetDevice::readData : [%1] : [%2] : more than")
        .arg(logger.address())
        .arg(logger.port());
}

} // namespace

/// Loggers that misbehave cost the well-behaved ones of their project nothing, and are read again once they behave.
class tst_HostileLogger : public QObject
{
    Q_OBJECT

private slots:
    void othersLoseNothing();
    void isReadAgain();
    void isCutOffWhenItSendsTooMuch();

private:
    void verifyHostileRows(const E2eFixture &e2e, int firstHostile);
};

void tst_HostileLogger::othersLoseNothing()
{
    E2eFixture e2e;
    e2e.addLogger(QStringLiteral("none"), quotedKey);
    for (const QString &fault : harmless())
        e2e.addLogger(fault);
    const int good = e2e.loggerCount();
    for (const QString &fault : hostile())
        e2e.addLogger(fault);
    // The statements of these loggers are too many to be printed.
    e2e.setLogRules(QStringLiteral("sorvanto.*.debug=false"));
    QVERIFY2(e2e.start(), e2e.startError());
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(12, good); }), e2e.station().lastWords());
    QVERIFY2(e2e.fallSilent(good), e2e.station().lastWords());
    QVERIFY2(e2e.station().end(), e2e.station().lastWords());
    QVERIFY2(e2e.station().hasSucceeded(), e2e.station().lastWords());

    QCOMPARE(e2e.differences(good, false), QByteArray());
    QCOMPARE(e2e.integrity(), QStringLiteral("ok"));
    verifyHostileRows(e2e, good);
}

/// Nothing that a hostile logger sent has become a row of a logger that does not exist, or a value that is none.
void tst_HostileLogger::verifyHostileRows(const E2eFixture &e2e, int firstHostile)
{
    const QList<RecordedRow> rows = e2e.rows();
    QSet<QString> known;
    for (int i = 0; i < e2e.loggerCount(); ++i)
        known.insert(e2e.served(i).serial());
    for (const RecordedRow &row : rows) {
        QVERIFY2(known.contains(row.serial), qPrintable(row.serial));
        for (const QVariant &value : {row.channel1, row.channel2})
            QVERIFY(value.isNull() || value.userType() == QMetaType::Double);
    }
    const auto readings = [&](const QString &fault) {
        return readingsOf(e2e.served(firstHostile + int(hostile().indexOf(fault))).serial(), rows);
    };
    for (const char *fault : {"garbage", "noecho", "stall", "vanish", "refuse", "silent"})
        QVERIFY2(readings(QLatin1String(fault)).isEmpty(), fault);
    for (const char *fault : {"manylines:20", "hugenumbers", "nan", "quotes", "binary"})
        QVERIFY2(!readings(QLatin1String(fault)).isEmpty(), fault);
    for (const RecordedRow &row : readings(QStringLiteral("nan"))) {
        QCOMPARE(row.channel1.toDouble(), 0.0);
        QCOMPARE(row.channel2.toDouble(), 0.0);
    }
}

/// A fault that comes while recording and goes again: the logger is read again without anybody's help.
void tst_HostileLogger::isReadAgain()
{
    const QStringList faults{QStringLiteral("silent"), QStringLiteral("refuse"), QStringLiteral("stall"),
                             QStringLiteral("vanish"), QStringLiteral("closeafter")};
    E2eFixture e2e;
    e2e.addLogger();
    for (int i = 0; i < faults.size(); ++i)
        e2e.addLogger();
    QVERIFY2(e2e.start(), e2e.startError());
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(3); }), e2e.station().lastWords());
    for (int i = 0; i < faults.size(); ++i)
        e2e.setFault(i + 1, faults.at(i));
    // Long enough for the missed-reply limit, after which links are closed and opened anew.
    const int before = e2e.served(0).count();
    QVERIFY2(e2e.waitUntil([&] { return e2e.served(0).count() >= before + 8; }), e2e.station().lastWords());

    const QList<int> atRecovery = servedSoFar(e2e);
    e2e.setFaults(QStringLiteral("none"));
    QVERIFY2(e2e.waitUntil([&] { return areReadAgain(e2e, atRecovery); }), e2e.station().lastWords());
    QVERIFY2(e2e.station().end(), e2e.station().lastWords());
    QVERIFY2(e2e.station().hasSucceeded(), e2e.station().lastWords());

    QCOMPARE(e2e.differences(1), QByteArray());
    QCOMPARE(e2e.integrity(), QStringLiteral("ok"));
    const QList<RecordedRow> rows = e2e.rows();
    for (int i = 0; i < e2e.loggerCount(); ++i) {
        QCOMPARE(e2e.served(i).missingSince(atRecovery.at(i), rows), QStringList());
        QVERIFY(readingsOf(e2e.served(i).serial(), rows).size() <= e2e.served(i).count());
    }
}

/// It costs the others nothing, is told of once, and counts again as soon as it behaves.
void tst_HostileLogger::isCutOffWhenItSendsTooMuch()
{
    constexpr int good = 4;
    constexpr int hostileCount = 16;
    const QStringList tooMuch{QStringLiteral("largenumbers"), QStringLiteral("manylines"), QStringLiteral("flood:1024"),
                              QStringLiteral("largenumbers:1024")};
    E2eFixture e2e;
    for (int i = 0; i < good; ++i)
        e2e.addLogger();
    for (int i = 0; i < hostileCount; ++i)
        e2e.addLogger(tooMuch.at(i % tooMuch.size()));
    e2e.setLogRules(QStringLiteral("sorvanto.*.debug=false"));
    QVERIFY2(e2e.start(), e2e.startError());
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(12, good); }), e2e.station().lastWords());
    for (int i = good; i < e2e.loggerCount(); ++i) {
        QVERIFY2(e2e.waitUntil([&] { return e2e.logger(i).commands() >= 6; }), e2e.station().lastWords());
        QCOMPARE(e2e.station().count(cutOffLine(e2e.logger(i))), 1);
    }

    const QList<int> atRecovery = servedSoFar(e2e);
    e2e.setFaults(QStringLiteral("none"));
    QVERIFY2(e2e.waitUntil([&] { return areReadAgain(e2e, atRecovery); }), e2e.station().lastWords());
    QVERIFY2(e2e.fallSilent(), e2e.station().lastWords());
    QVERIFY2(e2e.station().end(), e2e.station().lastWords());
    QVERIFY2(e2e.station().hasSucceeded(), e2e.station().lastWords());

    QCOMPARE(e2e.differences(good, false), QByteArray());
    const QList<RecordedRow> rows = e2e.rows();
    for (int i = good; i < e2e.loggerCount(); ++i) {
        // Its first honest answer may have come behind what was still on its way.
        QCOMPARE(e2e.served(i).missingSince(atRecovery.at(i) + 1, rows), QStringList());
        QCOMPARE(e2e.station().count(cutOffLine(e2e.logger(i))), 1);
    }
}

QTEST_GUILESS_MAIN(tst_HostileLogger)
#include "tst_HostileLogger.moc"
