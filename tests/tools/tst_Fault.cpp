#include "loggersim/Fault.h"
#include "loggersim/Reply.h"

#include <QTest>

using namespace loggersim;

Q_DECLARE_METATYPE(loggersim::FaultKind)

class tst_Fault : public QObject
{
    Q_OBJECT

private slots:
    void parse_data();
    void parse();
    void refuse_data();
    void refuse();
    void helpNamesEveryFault();
    void replies_data();
    void replies();
    void splitReplyHurts();
    void hugeNumbers();
    void manyLines();
    void binary();
};

void tst_Fault::parse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<FaultKind>("kind");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("argument");
    QTest::newRow("none") << "none" << FaultKind::None << 0 << "";
    QTest::newRow("silent") << "silent" << FaultKind::Silent << 0 << "";
    QTest::newRow("slow") << "slow" << FaultKind::Slow << 500 << "";
    QTest::newRow("slow with time") << "slow:1500" << FaultKind::Slow << 1500 << "";
    QTest::newRow("slow without delay") << "slow:0" << FaultKind::Slow << 0 << "";
    QTest::newRow("split") << "split" << FaultKind::Split << 20 << "";
    QTest::newRow("dashes") << "dashes" << FaultKind::Dashes << 0 << "";
    QTest::newRow("dashes on one channel") << "dashes:2" << FaultKind::Dashes << 2 << "";
    QTest::newRow("many lines") << "manylines" << FaultKind::ManyLines << 5000 << "";
    QTest::newRow("err") << "err" << FaultKind::AlarmError << 0 << "";
    QTest::newRow("err on one command") << "err:ATBMAX2" << FaultKind::AlarmError << 0 << "ATBMAX2";
    QTest::newRow("replug") << "replug" << FaultKind::Replug << 0 << "";
    QTest::newRow("replug later") << "replug:300" << FaultKind::Replug << 300 << "";
    QTest::newRow("swap") << "swap:00001002" << FaultKind::Swap << 0 << "00001002";
}

void tst_Fault::parse()
{
    QFETCH(QString, text);
    QString error;
    const auto fault = parseFault(text, &error);
    QVERIFY2(fault, qPrintable(error));
    QTEST(fault->kind, "kind");
    QTEST(fault->number, "number");
    QTEST(fault->text, "argument");
    QCOMPARE(error, QString());
}

void tst_Fault::refuse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("reason");
    QTest::newRow("empty") << ""
                           << "there is no fault \"\"";
    QTest::newRow("unknown") << "loud"
                             << "there is no fault \"loud\"";
    QTest::newRow("upper case") << "Silent"
                                << "there is no fault \"Silent\"";
    QTest::newRow("argument too many") << "silent:3"
                                       << "\"silent\" takes no argument";
    QTest::newRow("argument missing") << "swap"
                                      << "\"swap\" needs an argument";
    QTest::newRow("no number") << "slow:soon"
                               << "\"slow\" takes a number from 0 to 3600000, not \"soon\"";
    QTest::newRow("negative") << "slow:-1"
                              << "\"slow\" takes a number from 0 to 3600000, not \"-1\"";
    QTest::newRow("too many lines") << "manylines:100001"
                                    << "\"manylines\" takes a number from 0 to 100000, not \"100001\"";
    QTest::newRow("no such channel") << "dashes:3"
                                     << "\"dashes\" takes a number from 0 to 2, not \"3\"";
}

void tst_Fault::refuse()
{
    QFETCH(QString, text);
    QString error;
    QVERIFY(!parseFault(text, &error));
    QTEST(error, "reason");
}

void tst_Fault::helpNamesEveryFault()
{
    const QString help = faultHelp();
    for (int kind = 0; kind <= static_cast<int>(FaultKind::Swap); ++kind)
        QVERIFY2(help.contains(faultName(static_cast<FaultKind>(kind))), qPrintable(QString::number(kind)));
}

void tst_Fault::replies_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("reading");
    QTest::newRow("none") << "none" << QByteArray("ATDC 21.50,45.10\r\n") << true;
    QTest::newRow("slow") << "slow" << QByteArray("ATDC 21.50,45.10\r\n") << true;
    QTest::newRow("split") << "split" << QByteArray("ATDC 21.50,45.10\r\n") << true;
    QTest::newRow("no echo") << "noecho" << QByteArray("21.50,45.10\r\n") << false;
    QTest::newRow("dashes") << "dashes" << QByteArray("ATDC ----,----\r\n") << true;
    QTest::newRow("dashes on channel 1") << "dashes:1" << QByteArray("ATDC ----,45.10\r\n") << true;
    QTest::newRow("dashes on channel 2") << "dashes:2" << QByteArray("ATDC 21.50,----\r\n") << true;
    QTest::newRow("not a number") << "nan" << QByteArray("ATDC nan,inf\r\n") << false;
    QTest::newRow("quotes") << "quotes" << QByteArray("ATDC '21.50'),('x',1,1,1);--,\"45.10\"';\r\n") << false;
}

void tst_Fault::replies()
{
    QFETCH(QString, fault);
    QString error;
    const Reply reply = pollReply(*parseFault(fault, &error), "ATDC", "21.50,45.10");
    QTEST(reply.pieces.join(), "text");
    QTEST(reply.isReading, "reading");
}

void tst_Fault::splitReplyHurts()
{
    QString error;
    const Reply reply = pollReply(*parseFault("split:35", &error), "ATCD", "21.50,45.10");
    QCOMPARE(reply.pieces, (QByteArrayList{"AT", "CD 21.50", ",45.10\r", "\n"}));
    QCOMPARE(reply.pauseMs, 35);
}

void tst_Fault::hugeNumbers()
{
    QString error;
    const QByteArray text = pollReply(*parseFault("hugenumbers", &error), "ATDC", "1,2").pieces.join();
    QCOMPARE(text, "ATDC " + QByteArray(4000, '9') + ",-" + QByteArray(4000, '8') + "\r\n");
}

void tst_Fault::manyLines()
{
    QString error;
    const QByteArray text = pollReply(*parseFault("manylines", &error), "ATDC", "1,2").pieces.join();
    QCOMPARE(text, QByteArray("ATDC 1,2\r\n").repeated(5000));
}

void tst_Fault::binary()
{
    QString error;
    const QByteArray text = pollReply(*parseFault("binary", &error), "ATDC", "1,2").pieces.join();
    QVERIFY(text.startsWith("ATDC "));
    for (int byte = 0; byte < 256; ++byte)
        QVERIFY(text.contains(static_cast<char>(byte)));
}

QTEST_GUILESS_MAIN(tst_Fault)
#include "tst_Fault.moc"
