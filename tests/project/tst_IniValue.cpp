#include "project/IniText.h"

#include <QFile>
#include <QRandomGenerator>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

/// Values in the form of the toolkit's settings class, which other programs read and older stations have written.
class tst_IniValue : public QObject
{
    Q_OBJECT

private slots:
    void textsAreReadAsWritten_data();
    void textsAreReadAsWritten();
    void readsWhatTheToolkitWrites_data() { textsAreReadAsWritten_data(); }
    void readsWhatTheToolkitWrites();
    void toolkitReadsWhatIsWritten_data() { textsAreReadAsWritten_data(); }
    void toolkitReadsWhatIsWritten();
    void anyTextCrossesBothWays();
    void numbersAndFlags();
    void noValue();
    void raw_data();
    void raw();
    void bytesKeepEveryByte();
    void otherTypesReadLikeNone_data();
    void otherTypesReadLikeNone();
    void anyTextIsReadAsTheToolkitReadsIt();

private:
    void writeFile(const QByteArray &content);
    QByteArray content() const;

    QTemporaryDir m_folder;
    QString m_path; ///< a new one for each test: the toolkit remembers what it has read
    int m_files = 0;
};

namespace {

IniValue::TextMap doubled(const QStringList &texts)
{
    IniValue::TextMap map;
    for (const QString &text : texts)
        map.insert(text, text + text);
    return map;
}

QString anyText(QRandomGenerator &random)
{
    static const QString characters = QStringLiteral("@@((),;=\"\\ \t\n\r%0179afAFxzgé°–日☃") + QChar(0) + QChar(0x7f) +
                                      QChar(0x85) + QChar(1) + QChar(0xd83c) + QChar(0xdf21);
    QString text;
    for (int length = random.bounded(12); length > 0; --length)
        text += characters.at(random.bounded(int(characters.size())));
    // The newer toolkit writes no half characters.
    return QString::fromUtf8(text.toUtf8());
}

} // namespace

void tst_IniValue::writeFile(const QByteArray &content)
{
    m_path = m_folder.filePath(QString::number(++m_files));
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

QByteArray tst_IniValue::content() const
{
    QFile file(m_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_IniValue::textsAreReadAsWritten_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("plain") << QStringList{"Kitchen"};
    QTest::newRow("empty") << QStringList{""};
    QTest::newRow("none") << QStringList();
    QTest::newRow("list") << QStringList{"a", "b", "", "c"};
    QTest::newRow("empty ones") << QStringList{"", "", ""};
    QTest::newRow("commas, quotes, semicolons") << QStringList{"a, b", "\"c\"", "d;e=f", "'", "?"};
    QTest::newRow("blanks") << QStringList{" a", "b ", " ", "c d", "\t", "e\t"};
    QTest::newRow("looks like a type") << QStringList{"@ByteArray(x)", "@Invalid()", "@@", "@", "@Variant(\\0)"};
    QTest::newRow("looks like a type, alone") << QStringList{"@Variant(\\0\\0\\0\\t)"};
    QTest::newRow("line ends") << QStringList{"a\nb", "c\r\nd", "\v\f\a\b"};
    QTest::newRow("zero characters") << QStringList{QString("a") + QChar(0) + "1", QString(QChar(0))};
    QTest::newRow("beyond ASCII") << QStringList{QStringLiteral("K\u00FChlraum \u00B0C1 \u2013 \U0001F321f"),
                                                 QStringLiteral("\u65E5\u672C")};
    QTest::newRow("control characters before digits") << QStringList{"\x7f"
                                                                     "1",
                                                                     "\x01"
                                                                     "f",
                                                                     "\x1fg"};
    QTest::newRow("windows path") << QStringList{"C:\\data\\new\\x41.tpc"};
}

void tst_IniValue::textsAreReadAsWritten()
{
    QFETCH(QStringList, texts);
    const IniValue value = IniValue::fromTexts(texts);
    QCOMPARE(value.toTexts(), texts);
    if (texts.size() == 1)
        QCOMPARE(value.toText(), texts.first());
    for (const QString &text : std::as_const(texts)) {
        QCOMPARE(IniValue::fromText(text).toText(), text);
        QCOMPARE(IniValue::fromBytes(text.toUtf8()).toBytes(), text.toUtf8());
        const IniValue::TextMap map{{text, QStringLiteral("/p")}, {QStringLiteral("x"), text}};
        QCOMPARE(IniValue::fromTextMap(map).toTextMap(), map);
    }
}

void tst_IniValue::readsWhatTheToolkitWrites()
{
    QFETCH(QStringList, texts);
    writeFile({});
    {
        QSettings settings(m_path, QSettings::IniFormat);
        QVariantMap map;
        for (const QString &text : std::as_const(texts))
            map.insert(text, text + text);
        settings.setValue("texts", texts);
        settings.setValue("text", texts.value(0));
        settings.setValue("bytes", texts.join('|').toUtf8());
        settings.setValue("map", map);
        settings.setValue("hash", QVariantHash{{"a", texts.value(0)}});
    }
    const IniText text(content());
    QCOMPARE(text.value("texts").toTexts(), texts);
    QCOMPARE(text.value("text").toText(), texts.value(0));
    QCOMPARE(text.value("bytes").toBytes(), texts.join('|').toUtf8());
    QCOMPARE(text.value("hash").toTextMap(), IniValue::TextMap({{"a", texts.value(0)}}));
    QCOMPARE(text.value("map").toTextMap(), doubled(texts));
}

void tst_IniValue::toolkitReadsWhatIsWritten()
{
    QFETCH(QStringList, texts);
    const IniValue::TextMap map = doubled(texts);
    IniText text;
    text.setValue("texts", IniValue::fromTexts(texts));
    text.setValue("text", IniValue::fromText(texts.value(0)));
    text.setValue("bytes", IniValue::fromBytes(texts.join('|').toUtf8()));
    text.setValue("map", IniValue::fromTextMap(map));
    text.setValue("number", IniValue::fromNumber(-5));
    text.setValue("flag", IniValue::fromFlag(true));
    writeFile(text.toBytes());

    const QSettings settings(m_path, QSettings::IniFormat);
    QCOMPARE(settings.status(), QSettings::NoError);
    QCOMPARE(settings.value("texts").toStringList(), texts);
    QCOMPARE(settings.value("text").toString(), texts.value(0));
    QCOMPARE(settings.value("bytes").toByteArray(), texts.join('|').toUtf8());
    QCOMPARE(settings.value("number").toInt(), -5);
    QVERIFY(settings.value("flag").toBool());
    const QVariantMap read = settings.value("map").toMap();
    QCOMPARE(read.size(), map.size());
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        QCOMPARE(read.value(entry.key()).toString(), entry.value());
}

void tst_IniValue::anyTextCrossesBothWays()
{
    QRandomGenerator random(4711);
    IniText text;
    writeFile({});
    QStringList texts;
    {
        QSettings settings(m_path, QSettings::IniFormat);
        for (int i = 0; i < 500; ++i) {
            texts += anyText(random);
            settings.setValue(QString::number(i), texts.last());
            text.setValue(QString::number(i), IniValue::fromText(texts.last()));
        }
        settings.setValue("list", texts);
        text.setValue("list", IniValue::fromTexts(texts));
    }
    const IniText fromToolkit(content());
    writeFile(text.toBytes());
    const QSettings toToolkit(m_path, QSettings::IniFormat);
    for (int i = 0; i < texts.size(); ++i) {
        QCOMPARE(fromToolkit.value(QString::number(i)).toText(), texts.at(i));
        QCOMPARE(toToolkit.value(QString::number(i)).toString(), texts.at(i));
    }
    QCOMPARE(fromToolkit.value("list").toTexts(), texts);
    QCOMPARE(toToolkit.value("list").toStringList(), texts);
}

void tst_IniValue::numbersAndFlags()
{
    QCOMPARE(IniValue::fromNumber(-600000).toNumber(), -600000);
    QCOMPARE(IniValue("4294968296").toNumber(), 4294968296);
    QCOMPARE(IniValue("soon").toNumber(), 0);
    QCOMPARE(IniValue("1, 2").toNumber(), 0);
    for (const bool flag : {true, false})
        QCOMPARE(IniValue::fromFlag(flag).toFlag(), flag);
    for (const char *off : {"false", "FALSE", "0", "", "@Invalid()", "true, true", "@Variant(\\0\\0\\0\\x1\\x1)"})
        QVERIFY2(!IniValue(off).toFlag(), off);
    for (const char *on : {"true", "1", "yes", "@ByteArray(true)"})
        QVERIFY2(IniValue(on).toFlag(), on);
}

void tst_IniValue::noValue()
{
    const IniValue none;
    QVERIFY(!none.isPresent());
    QCOMPARE(none.toText(), QString());
    QCOMPARE(none.toTexts(), QStringList());
    QCOMPARE(none.toBytes(), QByteArray());
    QCOMPARE(none.toNumber(), 0);
    QVERIFY(!none.toFlag());
    QVERIFY(none.toTextMap().isEmpty());
    QVERIFY(IniValue("").isPresent());
    QCOMPARE(IniValue("").toTexts(), QStringList(""));
}

void tst_IniValue::raw_data()
{
    QTest::addColumn<QByteArray>("raw");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("blanks around") << QByteArray(" \ta b \t") << QStringList{"a b"};
    QTest::newRow("blanks that count") << QByteArray("\" a \" , b\\x20 ") << QStringList{" a ", "b "};
    QTest::newRow("quotes within") << QByteArray("a\"b, c\"d") << QStringList{"ab, cd"};
    QTest::newRow("codes") << QByteArray("\\x41\\102\\0\\xd83c\\xdf21")
                           << QStringList{QString("AB") + QChar(0) + QStringLiteral("\U0001F321")};
    QTest::newRow("code beyond a character") << QByteArray("\\xffffffffffff0041") << QStringList{"A"};
    QTest::newRow("unknown escapes") << QByteArray("\\g\\x\\") << QStringList{""};
    QTest::newRow("continued line") << QByteArray("a\\\r\nb\\\nc") << QStringList{"abc"};
    QTest::newRow("UTF-8") << QByteArray("\xc3\xbc, \xe2\x98\x83")
                           << QStringList{QStringLiteral("\u00FC"), QStringLiteral("\u2603")};
    QTest::newRow("Latin-1") << QByteArray("\xfc\xb0") << QStringList{QStringLiteral("\u00FC\u00B0")};
}

void tst_IniValue::raw()
{
    QFETCH(QByteArray, raw);
    QFETCH(QStringList, texts);
    QCOMPARE(IniValue(raw).toTexts(), texts);
    QCOMPARE(IniValue(raw).raw(), raw);
}

void tst_IniValue::bytesKeepEveryByte()
{
    QByteArray every;
    for (int byte = 0; byte < 256; ++byte)
        every += char(byte);
    QCOMPARE(IniValue::fromBytes(every + every).toBytes(), every + every);
    // Written by hand, in whatever encoding.
    QCOMPARE(IniValue("@ByteArray(\xc3\xbc)").toBytes(), QByteArray("\xc3\xbc"));
    QCOMPARE(IniValue("@ByteArray(\xfc)").toBytes(), QByteArray("\xfc"));
    QCOMPARE(IniValue("\xc3\xbc").toBytes(), QByteArray("\xc3\xbc"));
    QCOMPARE(IniValue("\\xfc").toBytes(), QByteArray("\xc3\xbc"));
}

void tst_IniValue::otherTypesReadLikeNone_data()
{
    QTest::addColumn<QByteArray>("raw");
    QTest::newRow("nothing") << QByteArray("@Invalid()");
    QTest::newRow("rectangle") << QByteArray("@Rect(1 2 3 4)");
    QTest::newRow("time") << QByteArray("@DateTime(\\0\\0\\0\\x10\\0)");
    // Each makes the toolkit's own reader fail: for want of memory, for want of stack, with a picture of 1.3 GB.
    QTest::newRow("list of 268 million") << QByteArray("@Variant(\\0\\0\\0\\t\\xf\\xff\\xff\\xff)");
    QTest::newRow("its mark escaped") << QByteArray("\\x40Variant(\\0\\0\\0\\t\\xf\\xff\\xff\\xff)");
    QTest::newRow("in quotes") << QByteArray("\"@Var\"\"iant(\\0\\0\\0\\t\\xf\\xff\\xff\\xff)\"");
    QTest::newRow("nested lists") << QByteArray("@Variant(" + QByteArray("\\0\\0\\0\\t\\0\\0\\0\\x1").repeated(100000) +
                                                ')');
    QTest::newRow("nested maps") << QByteArray(
        "@Variant(" + QByteArray("\\0\\0\\0\\b\\0\\0\\0\\x1\\0\\0\\0\\0").repeated(100000) + ')');
    QTest::newRow("map of billions") << QByteArray("@Variant(\\0\\0\\0\\b\\xff\\xff\\xff\\xff)");
    QTest::newRow("key of billions") << QByteArray("@Variant(\\0\\0\\0\\b\\0\\0\\0\\x1\\xff\\xff\\xff\\xfe\\0\\x61)");
    QTest::newRow("odd key") << QByteArray("@Variant(\\0\\0\\0\\b\\0\\0\\0\\x1\\0\\0\\0\\x1\\x61)");
}

void tst_IniValue::otherTypesReadLikeNone()
{
    QFETCH(QByteArray, raw);
    const IniValue value(raw);
    QCOMPARE(value.toText(), QString());
    QCOMPARE(value.toTexts(), QStringList());
    QCOMPARE(value.toBytes(), QByteArray());
    QCOMPARE(value.toNumber(), 0);
    QVERIFY(!value.toFlag());
    QVERIFY(value.toTextMap().isEmpty());
    QCOMPARE(IniValue(raw + ", " + raw).toTexts(), QStringList({"", ""}));
}

/// Also what nobody would write.
void tst_IniValue::anyTextIsReadAsTheToolkitReadsIt()
{
    static const QByteArray characters = "[]==;\"\\,%xabA01 \t\n\n\r()Genral";
    QRandomGenerator random(4711);
    for (int i = 0; i < 2000; ++i) {
        QByteArray text = random.bounded(2) ? "a=" : "";
        for (int length = random.bounded(40); length > 0; --length)
            text += characters.at(random.bounded(int(characters.size())));
        writeFile(text);
        const QSettings settings(m_path, QSettings::IniFormat);
        const IniText own(text);
        for (const char *key : {"a", "b", "A", "0", "1", "a/b"}) {
            const QVariant value = settings.value(key);
            QVERIFY2(own.value(key).isPresent() == value.isValid(), text.toPercentEncoding(" []=;\"\\,").constData());
            QVERIFY2(own.value(key).toTexts() == value.toStringList(),
                     text.toPercentEncoding(" []=;\"\\,").constData());
        }
        QVERIFY(QFile::remove(m_path));
    }
}

QTEST_GUILESS_MAIN(tst_IniValue)
#include "tst_IniValue.moc"
