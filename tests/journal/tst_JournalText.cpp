#include "journal/JournalText.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <limits>

namespace {

JournalEntry alarmEntry()
{
    JournalEvent event{JournalKind::AlarmBegan};
    event.key = QStringLiteral("0200AA");
    event.channel = 2;
    event.value = 21.6;
    event.low = -18.0;
    event.high = 1e-300;
    event.text = QString();
    event.time = QDateTime(QDate(2026, 3, 29), QTime(1, 59, 59, 7), Qt::UTC);
    return makeEntry(event, 1, {}, QString::fromUtf8("jörg"));
}

QJsonObject parsed(const JournalEntry &entry)
{
    return QJsonDocument::fromJson(jsonLine(entry)).object();
}

} // namespace

/// An entry as people and programs get to read it.
class tst_JournalText : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("TZ", "Asia/Kolkata"); }

    void jsonLineHasEveryName()
    {
        QCOMPARE(QString::fromUtf8(jsonLine(alarmEntry())),
                 QString::fromUtf8("{\"time\":\"2026-03-29T07:29:59.007+05:30\",\"kind\":\"alarm-began\","
                                   "\"key\":\"0200AA\",\"channel\":2,\"value\":21.6,\"low\":-18,\"high\":1e-300,"
                                   "\"old\":null,\"new\":null,\"text\":\"\",\"user\":\"jörg\"}"));
    }

    /// The hash, the number and the offset are not among them.
    void thereAreNoOtherNames()
    {
        const QStringList names = parsed(alarmEntry()).keys();
        QCOMPARE(names,
                 QStringList({"channel", "high", "key", "kind", "low", "new", "old", "text", "time", "user", "value"}));
    }

    void textsSurvive()
    {
        JournalEvent event{JournalKind::NameChanged};
        event.oldText = QString::fromUtf8("K\"ühl\\raum\n\t\x01 °C");
        event.newText = QString(QChar(QChar::Null)) + QStringLiteral("x");
        const QJsonObject object = parsed(makeEntry(event, 1, QDateTime::currentDateTime(), {}));
        QCOMPARE(object.value("old").toString(), *event.oldText);
        QCOMPARE(object.value("new").toString(), *event.newText);
        QVERIFY(object.value("text").isNull());
    }

    void numbersThatJsonLacksAreNull()
    {
        JournalEvent event{JournalKind::AlarmBegan};
        event.value = std::numeric_limits<double>::infinity();
        event.low = std::numeric_limits<double>::quiet_NaN();
        event.high = std::numeric_limits<double>::max();
        const QJsonObject object = parsed(makeEntry(event, 1, QDateTime::currentDateTime(), {}));
        QVERIFY(object.value("value").isNull());
        QVERIFY(object.value("low").isNull());
        QCOMPARE(object.value("high").toDouble(), std::numeric_limits<double>::max());
    }

    /// Put in by somebody else, it may be written in any way.
    void foreignNumbersAreJsonToo()
    {
        JournalEntry entry = alarmEntry();
        entry.fields[JournalEntry::Value] = "+021.60\n";
        entry.fields[JournalEntry::Low] = " .5";
        entry.fields[JournalEntry::Channel] = "02";
        QVERIFY(!jsonLine(entry).contains('\n'));
        const QJsonObject object = parsed(entry);
        QCOMPARE(object.value("value").toDouble(), 21.6);
        QCOMPARE(object.value("low").toDouble(), 0.5);
        QCOMPARE(object.value("channel").toInt(), 2);
    }

    /// A name that looks like what comes behind it.
    void plainLineTellsItsTextsApart()
    {
        JournalEntry entry = alarmEntry();
        entry.fields[JournalEntry::Key] = "A\" user=\"root";
        QVERIFY(plainLine(entry).contains(QStringLiteral("key=\"A\\u0022 user=\\u0022root\" ")));
    }

    void plainLineStaysOneLine()
    {
        JournalEntry entry = alarmEntry();
        entry.fields[JournalEntry::Text] = QByteArray("a\nb\x1b[31m");
        QCOMPARE(plainLine(entry),
                 QString::fromUtf8("2026-03-29T07:29:59.007+05:30 alarm-began key=\"0200AA\" channel=\"2\" "
                                   "value=\"21.6\" low=\"-18\" high=\"1e-300\" text=\"a\\u000ab\\u001b[31m\" "
                                   "user=\"jörg\""));
    }
};

QTEST_GUILESS_MAIN(tst_JournalText)
#include "tst_JournalText.moc"
