#include "json/QJsonDocument.h"
#include "json/QJsonValueRef.h"
#include "json/Reader.h"
#include "json/Writer.h"

#include <QTest>
#include <cstring>
#include <random>

class tst_Reader : public QObject
{
    Q_OBJECT

private slots:
    void accepts_data();
    void accepts();
    void readsStrings_data();
    void readsStrings();
    void refuses_data();
    void refuses();
    void clearsTheErrorOnSuccess();
    void nestsUpToTheLimit();
    void repeatedKeyReplaces();
    void sharesKeysOnlyWhenTheyAreEqual();
    void sharesTextsOnlyWhenTheyAreEqual();
    void hugeNumberIsHarmless();
    void everyCharacterSurvives();
    void everyCharacterSurvivesAlone();
    void everyTruncationFails();
    void survivesDamage();
};

namespace {

/// Reads from memory that ends with the text, so that a sanitizer sees any byte read too much.
json::QJsonDocument read(const QByteArray &text, json::QJsonParseError *error = nullptr)
{
    const std::unique_ptr<char[]> memory(new char[static_cast<std::size_t>(text.size())]);
    std::memcpy(memory.get(), text.constData(), static_cast<std::size_t>(text.size()));
    return json::QJsonDocument(json::parse(QByteArray::fromRawData(memory.get(), text.size()), error));
}

QString written(const json::QJsonDocument &document)
{
    if (document.isNull())
        return QStringLiteral("(no document)");
    return json::serialise(document.isArray() ? json::QJsonValue(document.array()) : document.object());
}

QByteArray nested(int depth)
{
    QByteArray text;
    for (int i = 0; i < depth; ++i)
        text += i % 2 ? "{\"a\":" : "[";
    text += "0";
    for (int i = depth - 1; i >= 0; --i)
        text += i % 2 ? "}" : "]";
    return text;
}

const QByteArray sampleDocument =
    "{\"devices\": [{\"Name\": \"K\xC3\xBChl \\u00e4 \\ud834\\udd1e \\\\\",\"n\": -1.5e+3,"
    "\"t\": true,\"f\": false,\"z\": null,\"e\": {},\"a\": [[],0,10]},{\"Name\": \"\"}]}";

} // namespace

void tst_Reader::accepts_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QByteArray &text, const QString &expected) {
        QTest::newRow(name) << text << expected;
    };
    row("empty array", "[]", "[]");
    row("empty array with spaces", "  [ ] ", "[]");
    row("empty object", "{}", "{}");
    row("empty object with spaces", " { } ", "{}");
    row("every white space", "\t\n\v\f\r [\t\n\v\f\r 1\t\n\v\f\r ,\t\n\v\f\r 2\t\n\v\f\r ]\t\n\v\f\r ", "[1,2]");
    row("white space in an object", "{\v\"a\"\f:\r1\n,\t\"b\" : 2 }", "{\"a\": 1,\"b\": 2}");
    row("sorted", "{\"b\": 1,\"a\": 2}", "{\"a\": 2,\"b\": 1}");
    row("literals", "[true,false,null]", "[true,false,null]");
    row("nested", "[[],{},[{}]]", "[[],{},[{}]]");
    row("zero", "[0]", "[0]");
    row("negative zero", "[-0]", "[0]");
    row("whole", "[1234567890]", "[1234567890]");
    row("fraction", "[-0.25]", "[-0.25]");
    row("exponents", "[1e2,1E+2,1e-2,12.5E0]", "[100,100,0.01,12.5]");
    row("17 digits", "[0.1]", "[0.10000000000000001]");
    row("more digits than a double has", "[3.14159265358979323846264338327950288]", "[3.1415926535897931]");
    row("space behind a number", "[1 ]", "[1]");
}

void tst_Reader::accepts()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    json::QJsonParseError error;
    QCOMPARE(written(read(text, &error)), expected);
    QCOMPARE(error.number, int(json::QJsonParseError::NoError));
}

void tst_Reader::readsStrings_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");
    const QString bad(QChar(QChar::ReplacementCharacter));
    const QString clef = QString::fromUcs4(U"\U0001D11E");
    const auto row = [](const char *name, const QByteArray &text, const QString &expected) {
        QTest::newRow(name) << text << expected;
    };
    row("empty", "", "");
    row("plain", "abc", "abc");
    row("quote", "a\\\"b", "a\"b");
    row("slash", "a\\/b", "a/b");
    row("backslash", "COM\\\\1", "COM\\1");
    row("control escapes", "\\b\\f\\n\\r\\t", "\b\f\n\r\t");
    row("raw control characters", "a\x01\tb\n", "a\x01\tb\n");
    row("raw zero", QByteArray("a\0b", 3), QString::fromLatin1("a\0b", 3));
    row("UTF-8",
        "K\xC3\xBChlraum \xC2\xB0"
        "C",
        QStringLiteral("K\u00FChlraum \u00B0C"));
    row("UTF-8 beyond the basic plane", "\xF0\x9D\x84\x9E", clef);
    row("byte order mark at the start",
        "\xEF\xBB\xBF"
        "a",
        QChar(0xFEFF) + QStringLiteral("a"));
    row("byte order mark behind an escape", "\\n\xEF\xBB\xBF", QStringLiteral("\n") + QChar(0xFEFF));
    row("unicode escape", "\\u00e4\\u00E4\\u0041", QStringLiteral("\u00E4\u00E4A"));
    row("unicode escape of zero", "\\u0000", QString(QChar(0)));
    row("unicode escape of a quote", "\\u0022", "\"");
    row("surrogate pair", "\\ud834\\udd1e", clef);
    row("surrogate pair in capitals", "x\\uD834\\uDD1Ey", "x" + clef + "y");
    row("lone high surrogate", "\\ud834", bad);
    row("high surrogate, text", "\\ud834x", bad + "x");
    row("high surrogate, other escape", "\\ud834\\n", bad + "\n");
    row("high surrogate, other unicode escape", "\\ud834\\u0041", bad + "A");
    row("high surrogate, then a pair", "\\ud834\\ud834\\udd1e", bad + clef);
    row("lone low surrogate", "\\udd1ex", bad + "x");
    row("pair the wrong way round", "\\udd1e\\ud834", bad + bad);
    row("stray continuation byte", "a\x80z", "a" + bad + "z");
    row("byte that UTF-8 never has", "a\xFFz", "a" + bad + "z");
    row("cut sequence", "a\xC3", "a" + bad);
    row("cut sequence before an escape", "a\xC3\\n", "a" + bad + "\n");
    row("cut long sequence at the end", "\xF0\x9D\x84", bad + bad + bad);
    row("surrogate in UTF-8", "\xED\xA0\xB4", bad + bad + bad);
    row("overlong slash", "\xC0\xAF", bad + bad);
}

void tst_Reader::readsStrings()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    const json::QJsonDocument value = read("[\"" + text + "\"]");
    QCOMPARE(value.array().at(0).kind(), json::Kind::String);
    QCOMPARE(value.array().at(0).toString(), expected);

    const json::QJsonDocument key = read("{\"" + text + "\":1}");
    QCOMPARE(key.object().count(), 1);
    QCOMPARE(key.object().begin()->key, expected);
}

void tst_Reader::refuses_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("offset");
    const auto row = [](const char *name, const QByteArray &text, int number, int offset) {
        QTest::newRow(name) << text << number << offset;
    };
    row("empty text", "", 11, 0);
    row("blank text", " \n\t", 11, 3);

    row("object: no end", "{\"a\":true", 1, 9);
    row("object: nothing", "{", 1, 1);
    row("object: no comma", "{\"a\":1 \"b\":2}", 1, 7);
    row("object: wrong bracket", "{\"a\":1]", 1, 6);
    row("object: key is no string", "{1:2}", 1, 1);
    row("object: comma at the end", "{\"a\":1,}", 1, 7);
    row("object: no colon", "{\"a\" 1}", 2, 5);
    row("object: ends behind a key", "{\"a\"", 2, 4);
    row("object: comma for a colon", "{\"a\",1}", 2, 4);

    row("array: a space separates two numbers", "[1 2]", 4, 3);
    row("array: wrong bracket", "[1}", 4, 2);
    row("array: ends behind a value", "[true", 4, 5);
    row("array: leading zero", "[01]", 4, 2);
    row("array: literal goes on", "[nulls]", 4, 5);

    row("top level: number", "1", 5, 0);
    row("top level: string", "\"a\"", 5, 0);
    row("top level: literal", "true", 5, 0);
    row("top level: closing bracket", " ]", 5, 1);
    row("top level: zero byte", QByteArray("\0", 1), 5, 0);
    row("top level: encoding mark", "\xEF\xBB\xBF[]", 5, 0);
    row("misspelt true", "[trve]", 5, 3);
    row("misspelt false", "[falsE]", 5, 5);
    row("misspelt null", "[nul]", 5, 4);
    row("cut literal", "[tr", 5, 3);

    row("number at the very end", "[1", 6, 2);
    row("number in an object at the very end", "{\"a\":12.5", 6, 9);
    row("minus at the very end", "[-", 6, 2);
    row("point at the very end", "[1.", 6, 3);
    row("exponent at the very end", "[1e", 6, 3);
    row("exponent sign at the very end", "[1e+", 6, 4);
    row("array: nothing", "[", 6, 1);
    row("array: ends behind a comma", "[1,", 6, 3);

    row("array: comma at the end", "[1,]", 7, 3);
    row("array: only a comma", "[,]", 7, 1);
    row("minus alone", "[-]", 7, 2);
    row("plus", "[+1]", 7, 1);
    row("no digit before the point", "[.5]", 7, 1);
    row("no digit behind the point", "[1.]", 7, 3);
    row("no digit in the exponent", "[1e]", 7, 3);
    row("no digit behind the exponent's sign", "[1e-]", 7, 4);
    row("nan", "[NaN]", 7, 1);
    row("infinity", "[-Infinity]", 7, 2);
    row("single quotes", "['a']", 7, 1);
    row("comment", "[/**/]", 7, 1);
    row("zero byte", QByteArray("[\0]", 3), 7, 1);

    row("unknown escape", "[\"\\x41\"]", 8, 3);
    row("escaped zero byte", QByteArray("[\"\\\0\"]", 6), 8, 3);
    row("no hexadecimal digit", "[\"\\u00g0\"]", 8, 6);
    row("short unicode escape", "[\"\\u12\"]", 8, 6);
    row("sign in a unicode escape", "[\"\\u+123\"]", 8, 4);
    row("bad escape behind a high surrogate", "[\"\\ud834\\uxxxx\"]", 8, 10);

    row("string: no end", "[\"abc", 10, 5);
    row("string: ends in a backslash", "[\"abc\\", 10, 6);
    row("string: ends in a unicode escape", "[\"\\u00", 10, 6);
    row("string: ends behind a high surrogate", "[\"\\ud834", 10, 8);
    row("string: ends in the second of a pair", "[\"\\ud834\\u", 10, 10);
    row("key: no end", "{\"abc", 10, 5);
    row("key: ends in a backslash", "{\"abc\\", 10, 6);

    row("text behind the document", "{} x", 14, 3);
    row("second document", "[1][2]", 14, 3);
    row("zero byte behind the document", QByteArray("[]\0", 3), 14, 2);

    row("one level too many", nested(1025), 12, 3072);
    row("never closed", QByteArray(5000000, '['), 12, 1024);
}

void tst_Reader::refuses()
{
    QFETCH(QByteArray, text);
    QFETCH(int, number);
    QFETCH(int, offset);
    json::QJsonParseError error;
    QVERIFY(read(text, &error).isNull());
    QCOMPARE(error.number, number);
    QCOMPARE(int(error.offset), offset);
    QVERIFY(read(text).isNull());
}

void tst_Reader::clearsTheErrorOnSuccess()
{
    json::QJsonParseError error{json::QJsonParseError::IllegalValue, 7};
    QVERIFY(!read("[]", &error).isNull());
    QCOMPARE(error.number, int(json::QJsonParseError::NoError));
    QCOMPARE(int(error.offset), 0);
}

void tst_Reader::nestsUpToTheLimit()
{
    const QByteArray text = nested(1024);
    const json::QJsonDocument document = read(text);
    QVERIFY(!document.isNull());
    QCOMPARE(written(document).remove(QLatin1Char(' ')), QString::fromLatin1(text));
    // Siblings do not add up.
    QVERIFY(!read("[" + QByteArray("[[]],").repeated(2000) + "0]").isNull());
}

void tst_Reader::repeatedKeyReplaces()
{
    QCOMPARE(written(read("{\"a\":1,\"b\":2,\"a\":3}")), QStringLiteral("{\"a\": 3,\"b\": 2}"));
    QCOMPARE(written(read("{\"a\":1,\"\\u0061\":2}")), QStringLiteral("{\"a\": 2}"));
}

void tst_Reader::sharesKeysOnlyWhenTheyAreEqual()
{
    QByteArray text = "[";
    QString expected = "[";
    for (int i = 0; i < 70; ++i) {
        // The same place has the same key, another one of the same length, one beyond ASCII and one with an escape.
        for (const char *key : {"ab", "ab", "ac", "a",
                                "\xC3\xA4"
                                "b",
                                "\\\"", "a"}) {
            text += QByteArray("{\"") + key + "\":1},";
            expected += QStringLiteral("{\"") + QString::fromUtf8(key) + QStringLiteral("\": 1},");
        }
    }
    text += "0]";
    expected += "0]";
    QCOMPARE(written(read(text)), expected);

    QByteArray wide = "{";
    for (int i = 1000; i < 1200; ++i)
        wide += '"' + QByteArray::number(i) + "\": 1" + (i == 1199 ? "}" : ",");
    QCOMPARE(written(read("[" + wide + "," + wide + "]")), QString::fromLatin1("[" + wide + "," + wide + "]"));
}

void tst_Reader::sharesTextsOnlyWhenTheyAreEqual()
{
    QByteArray text = "[";
    for (int round = 0; round < 3; ++round) {
        for (const char *value :
             {"\"OFF\"", "\"OFF\"", "\"OFE\"", "\"OF\"", "\"\"", "\"\xC3\x83\xC2\xA4\"", "\"\xC3\xA4\"",
              "\"O\xC3\xA4\"", "\"O\\\\\"", "\"OFF\"", "1", "null", "{\"a\": \"OFF\",\"b\": \"OFF\"}"})
            text += QByteArray("{\"a\": ") + value + ",\"b\": \"OFF\"},";
    }
    text += "0]";
    const json::QJsonDocument document = read(text);
    QCOMPARE(written(document), QString::fromUtf8(text));

    // A text that several values share belongs to each of them alone.
    QString mine = document.array().at(0).toObject()["a"].toString();
    mine[0] = QLatin1Char('o');
    QCOMPARE(written(document), QString::fromUtf8(text));
}

void tst_Reader::hugeNumberIsHarmless()
{
    for (const char *number : {"1e999", "-1e999", "1e-999", "1e99999999999999999999"}) {
        const json::QJsonDocument document = read(QByteArray("[") + number + "]");
        QCOMPARE(document.array().at(0).kind(), json::Kind::Number);
        QCOMPARE(document.array().at(0).toInt(), 0);
        QVERIFY(!read(written(document).toUtf8()).isNull());
    }
    const json::QJsonDocument digits = read("[" + QByteArray(400000, '9') + "]");
    QVERIFY(!digits.isNull());
}

void tst_Reader::everyCharacterSurvives()
{
    QString all;
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        if (code < 0xD800 || code > 0xDFFF)
            all += QString::fromUcs4(&code, 1);
    }
    const json::QJsonObject object{{"all", all}, {all, 1}};
    const json::QJsonDocument document = read(json::serialise(object).toUtf8());
    QVERIFY(document.isObject());
    QVERIFY(document.object() == object);
}

void tst_Reader::everyCharacterSurvivesAlone()
{
    for (char32_t code = 0; code < 0x10000; ++code) {
        if (QChar::isSurrogate(code))
            continue;
        const QString text = QString::fromUcs4(&code, 1);
        const json::QJsonDocument document = read(json::serialise(json::QJsonArray{text}).toUtf8());
        if (document.array().at(0).toString() != text)
            QFAIL(qPrintable(QStringLiteral("U+%1 was lost").arg(uint(code), 4, 16, QLatin1Char('0'))));
    }
}

void tst_Reader::everyTruncationFails()
{
    QVERIFY(!read(sampleDocument).isNull());
    for (int size = 0; size < sampleDocument.size(); ++size) {
        json::QJsonParseError error;
        QVERIFY(read(sampleDocument.left(size), &error).isNull());
        QVERIFY(error.number != json::QJsonParseError::NoError);
        QCOMPARE(int(error.offset), size);
    }
}

void tst_Reader::survivesDamage()
{
    std::minstd_rand random(20);
    int readable = 0;
    for (int round = 0; round < 20000; ++round) {
        QByteArray text = sampleDocument;
        for (uint i = 0, changes = 1 + random() % 3; i < changes; ++i) {
            const int place = static_cast<int>(random() % static_cast<uint>(text.size()));
            switch (random() % 3) {
            case 0:
                text[place] = static_cast<char>(random() % 256);
                break;
            case 1:
                text.remove(place, 1 + static_cast<int>(random() % 4));
                break;
            default:
                text.insert(place, sampleDocument.mid(static_cast<int>(random() % 100), 4));
            }
        }
        const json::QJsonDocument document = read(text);
        if (document.isNull())
            continue;
        ++readable;
        const QString once = written(document);
        QCOMPARE(written(read(once.toUtf8())), once);
    }
    QVERIFY(readable > 100);
}

QTEST_GUILESS_MAIN(tst_Reader)
#include "tst_Reader.moc"
