#include "project/IniText.h"

#include <QTest>

class tst_IniText : public QObject
{
    Q_OBJECT

private slots:
    void findsAKey_data();
    void findsAKey();
    void setsOneKeyOnly_data();
    void setsOneKeyOnly();
    void aSetKeyIsFoundWhateverTheFile_data();
    void aSetKeyIsFoundWhateverTheFile();
    void manyRepetitionsTakeNoTime();
};

void tst_IniText::findsAKey_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("raw");
    QTest::newRow("general") << QByteArray("[General]\na=1\n") << "a" << QByteArray("1");
    QTest::newRow("before any header") << QByteArray("a=1\n[x]\na=2\n") << "a" << QByteArray("1");
    QTest::newRow("header in capitals") << QByteArray("[x]\n[GENERAL]\na=1") << "a" << QByteArray("1");
    QTest::newRow("header with blanks") << QByteArray("  [ General ]\n a =1") << "a" << QByteArray("1");
    QTest::newRow("a section called General") << QByteArray("[%General]\na=1") << "General/a" << QByteArray("1");
    QTest::newRow("group") << QByteArray("[x]\na=1\n[y]\na=2\n") << "y/a" << QByteArray("2");
    QTest::newRow("group as part of the key") << QByteArray("y\\a=2\n") << "y/a" << QByteArray("2");
    QTest::newRow("escaped header") << QByteArray("[%79]\na=2\n") << "y/a" << QByteArray("2");
    QTest::newRow("escaped key") << QByteArray("%44evice%U004cist=1\n") << "DeviceList" << QByteArray("1");
    QTest::newRow("incomplete escapes") << QByteArray("%4=1\n%U00=2\n%zz=3\n") << "%zz" << QByteArray("3");
    QTest::newRow("the last of several") << QByteArray("a=1\nb=2\na=3\n[x]\na=4\n[General]\na=5\n") << "a"
                                         << QByteArray("5");
    QTest::newRow("windows line ends") << QByteArray("[General]\r\na=1\r\nb=2\r\n") << "a" << QByteArray("1");
    QTest::newRow("old line ends") << QByteArray("[General]\ra=1\rb=2\r") << "a" << QByteArray("1");
    QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF[General]\na=1\n") << "a" << QByteArray("1");
    QTest::newRow("byte-order mark before a key") << QByteArray("\xEF\xBB\xBF"
                                                                "a=1\n")
                                                  << "a" << QByteArray("1");
    QTest::newRow("comments") << QByteArray("; a=1\n;\n  ;a=2\na=3;4\n") << "a" << QByteArray("3");
    QTest::newRow("quoted line end") << QByteArray("a=\"x\nb=2\ny\"\nb=3\n") << "b" << QByteArray("3");
    QTest::newRow("escaped line end") << QByteArray("a=x\\\nb=2\n") << "a" << QByteArray("x\\\nb=2");
    QTest::newRow("escaped quote") << QByteArray("a=\\\"\nb=2\n") << "b" << QByteArray("2");
    QTest::newRow("several equals signs") << QByteArray("a=b=c\n") << "a" << QByteArray("b=c");
    QTest::newRow("no equals sign") << QByteArray("a\nb=1\n") << "a" << QByteArray();
    QTest::newRow("in the header's line") << QByteArray("[General] a=1\n") << "a" << QByteArray();
    QTest::newRow("header without end") << QByteArray("[x\na=1\n") << "x/a" << QByteArray("1");
    QTest::newRow("bare bracket") << QByteArray("[\na=1\n") << "a" << QByteArray();
    QTest::newRow("bare equals sign") << QByteArray("=\na=1\n") << "a" << QByteArray("1");
    QTest::newRow("zero bytes") << QByteArray("\0\0\na=\0\n", 7) << "a" << QByteArray("\0", 1);
    QTest::newRow("missing") << QByteArray("[x]\na=1\n") << "a" << QByteArray();
}

void tst_IniText::findsAKey()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, key);
    QFETCH(QByteArray, raw);
    const IniText ini(text);
    QCOMPARE(ini.value(key).isPresent(), !raw.isNull());
    QCOMPARE(ini.value(key).raw(), raw);
    QCOMPARE(ini.toBytes(), text);
}

void tst_IniText::setsOneKeyOnly_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("empty file") << QByteArray() << "k" << QByteArray("[General]\nk=0\n");
    QTest::newRow("empty file, group") << QByteArray() << "g/k" << QByteArray("[g]\nk=0\n");
    QTest::newRow("in place") << QByteArray("[General]\na=1\n k = 2 \nz=3\n") << "k"
                              << QByteArray("[General]\na=1\n k=0\nz=3\n");
    QTest::newRow("in order") << QByteArray("[General]\na=1\nz=3\n") << "k" << QByteArray("[General]\na=1\nk=0\nz=3\n");
    QTest::newRow("as the first") << QByteArray("[General]\nz=3\n") << "k" << QByteArray("[General]\nk=0\nz=3\n");
    QTest::newRow("as the last") << QByteArray("[General]\na=1\n\n[x]\na=2\n") << "k"
                                 << QByteArray("[General]\na=1\nk=0\n\n[x]\na=2\n");
    QTest::newRow("no header, as the first") << QByteArray("z=3\n") << "k" << QByteArray("k=0\nz=3\n");
    QTest::newRow("no header, as the last") << QByteArray("a=1\n[x]\n") << "k" << QByteArray("a=1\nk=0\n[x]\n");
    QTest::newRow("no last line end") << QByteArray("[General]\na=1") << "k" << QByteArray("[General]\na=1\nk=0\n");
    QTest::newRow("other sections only") << QByteArray("[x]\na=1\n") << "k"
                                         << QByteArray("[General]\nk=0\n\n[x]\na=1\n");
    QTest::newRow("new group") << QByteArray("[x]\na=1") << "g/k" << QByteArray("[x]\na=1\n\n[g]\nk=0\n");
    QTest::newRow("several sections of the name")
        << QByteArray("[g]\na=1\n[x]\n[g]\nb=2\n") << "g/k" << QByteArray("[g]\na=1\nk=0\n[x]\n[g]\nb=2\n");
    QTest::newRow("repeated") << QByteArray("[General]\nk=1\na=\nk=2\n[x]\nk=3\n[General]\n%6b=4\n") << "k"
                              << QByteArray("[General]\nk=0\na=\n[x]\nk=3\n[General]\n");
    QTest::newRow("under another spelling")
        << QByteArray("g\\k=1\n[g]\na=1\n") << "g/k" << QByteArray("[g]\na=1\nk=0\n");
    QTest::newRow("windows line ends") << QByteArray("[General]\r\na=1\r\nk=1\r\nk=2\r\n") << "k"
                                       << QByteArray("[General]\r\na=1\r\nk=0\r\n");
    QTest::newRow("windows line ends, new")
        << QByteArray("[General]\r\na=1\r\n") << "k" << QByteArray("[General]\r\na=1\r\nk=0\r\n");
    QTest::newRow("comments") << QByteArray(";1\n[General];2\n;3\nk=1;4\n;5\nz=2 ;6\n;7") << "k"
                              << QByteArray(";1\n[General];2\n;3\nk=0;4\n;5\nz=2 ;6\n;7");
    QTest::newRow("comments only") << QByteArray(";1\n;2") << "k" << QByteArray("[General]\nk=0\n\n;1\n;2");
    QTest::newRow("comments only, group") << QByteArray(";1\n;2") << "g/k" << QByteArray(";1\n;2\n\n[g]\nk=0\n");
    QTest::newRow("no INI lines") << QByteArray("[General]\nwords\n[\n=\n]=\nk\n") << "k"
                                  << QByteArray("[General]\nk=0\nwords\n[\n=\n]=\nk\n");
    QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBFz=1\n") << "k" << QByteArray("\xEF\xBB\xBFk=0\nz=1\n");
    QTest::newRow("objects") << QByteArray("[General]\na=@Variant(\\0)\nk=@Variant(\\0)\nz=\\x40Variant(\\0)\n") << "k"
                             << QByteArray("[General]\na=@Variant(\\0)\nk=0\nz=\\x40Variant(\\0)\n");
    QTest::newRow("quotation without end")
        << QByteArray("[General]\na=1\nb=\"2\nc=3\n") << "k" << QByteArray("[General]\na=1\nk=0\nb=\"2\nc=3\n");
    QTest::newRow("the key without end") << QByteArray("[General]\nk=\"2\nc=3\n") << "k"
                                         << QByteArray("[General]\nk=0");
    QTest::newRow("escape without end") << QByteArray("a=1\\") << "k" << QByteArray("k=0\na=1\\");
    QTest::newRow("header without end") << QByteArray("a=1\n[g]\"\nb=2") << "g/k"
                                        << QByteArray("[g]\nk=0\n\n[General]\na=1\n[g]\"\nb=2");
    QTest::newRow("group behind a line without end")
        << QByteArray("[x]\nb=\"2") << "g/k" << QByteArray("[g]\nk=0\n\n[x]\nb=\"2");
}

void tst_IniText::setsOneKeyOnly()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, key);
    QFETCH(QByteArray, after);
    IniText text(before);
    text.setValue(key, IniValue("0"));
    QCOMPARE(text.toBytes(), after);
    QCOMPARE(text.value(key).raw(), QByteArray("0"));
    text.setValue(key, IniValue("0"));
    QCOMPARE(text.toBytes(), after);
}

void tst_IniText::aSetKeyIsFoundWhateverTheFile_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char *text : {"[",      "=",           "]",           "\"",    "\\",      "[\"",     "a=\\", "a=\"",
                             "a=\"\\", "[General]\"", "[General]\\", ";",     ";\\",     "a=1\\\r", "k",    "k\"",
                             "k=\\",   "[]",          "[]\n=",       "[g]\\", "g\\k=\"", "\r",      "%"})
        QTest::newRow(text) << QByteArray(text);
}

void tst_IniText::aSetKeyIsFoundWhateverTheFile()
{
    QFETCH(QByteArray, text);
    for (const char *key : {"k", "g/k"}) {
        IniText ini(text);
        ini.setValue(key, IniValue("0"));
        ini.setValue("m", IniValue("1"));
        QCOMPARE(ini.value(key).raw(), QByteArray("0"));
        QCOMPARE(ini.value("m").raw(), QByteArray("1"));
        QVERIFY2(text.contains('k') || ini.toBytes().contains(text), ini.toBytes().constData());
    }
}

/// Each in its turn would be cut out of four megabytes.
void tst_IniText::manyRepetitionsTakeNoTime()
{
    IniText text("[General]\n" + QByteArray("k=1\n").repeated(1000000));
    text.setValue("k", IniValue("0"));
    QCOMPARE(text.toBytes(), QByteArray("[General]\nk=0\n"));
}

QTEST_GUILESS_MAIN(tst_IniText)
#include "tst_IniText.moc"
