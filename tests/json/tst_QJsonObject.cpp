#include "json/QJsonValueRef.h"

#include <QTest>

using json::Member;

class tst_QJsonObject : public QObject
{
    Q_OBJECT

private slots:
    void sortsByKey_data();
    void sortsByKey();
    void insertSetsAnExistingKey();
    void lastOfSeveralCounts();
    void readsThroughMemberReference();
    void missingMemberReadsAsNull();
    void copiesShareUntilChanged();
    void changeDetaches();
    void sortsAHugeReversedObject();
};

namespace {

QStringList keys(const json::QJsonObject &object)
{
    QStringList list;
    for (const Member &member : object)
        list << member.key;
    return list;
}

} // namespace

void tst_QJsonObject::sortsByKey_data()
{
    QTest::addColumn<QStringList>("inserted");
    QTest::addColumn<QStringList>("sorted");
    QTest::newRow("none") << QStringList() << QStringList();
    QTest::newRow("sorted") << QStringList{"a", "b", "c"} << QStringList{"a", "b", "c"};
    QTest::newRow("reversed") << QStringList{"c", "b", "a"} << QStringList{"a", "b", "c"};
    QTest::newRow("mixed") << QStringList{"b", "a", "c", "", "ab"} << QStringList{"", "a", "ab", "b", "c"};
    QTest::newRow("case") << QStringList{"a", "B", "b", "A"} << QStringList{"A", "B", "a", "b"};
    // U+1D11E is written as the units D834 DD1E and so comes before U+FF5E.
    const QString clef = QString::fromUcs4(U"\U0001D11E");
    const QString tilde(QChar(0xFF5E));
    QTest::newRow("code units, not code points") << QStringList{tilde, clef} << QStringList{clef, tilde};
}

void tst_QJsonObject::sortsByKey()
{
    QFETCH(QStringList, inserted);
    QFETCH(QStringList, sorted);
    json::QJsonObject oneByOne;
    std::vector<Member> members;
    for (int i = 0; i < inserted.size(); ++i) {
        oneByOne.insert(inserted.at(i), i);
        members.push_back({inserted.at(i), i});
    }
    const json::QJsonObject atOnce(members);
    QCOMPARE(keys(oneByOne), sorted);
    QCOMPARE(keys(atOnce), sorted);
    QVERIFY(oneByOne == atOnce);
    for (int i = 0; i < inserted.size(); ++i)
        QCOMPARE(oneByOne[inserted.at(i)].toInt(), i);
}

void tst_QJsonObject::insertSetsAnExistingKey()
{
    json::QJsonObject object{{"a", 1}, {"b", 2}};
    object.insert("b", 3);
    object.insert("a", QStringLiteral("text"));
    QCOMPARE(object.count(), 2);
    QCOMPARE(object["a"].toString(), QStringLiteral("text"));
    QCOMPARE(object["b"].toInt(), 3);
}

void tst_QJsonObject::lastOfSeveralCounts()
{
    const json::QJsonObject object{{"b", 1}, {"a", 2}, {"b", 3}, {"a", 4}, {"b", 5}};
    QCOMPARE(keys(object), QStringList({"a", "b"}));
    QCOMPARE(object["a"].toInt(), 4);
    QCOMPARE(object["b"].toInt(), 5);
}

void tst_QJsonObject::readsThroughMemberReference()
{
    const json::QJsonObject object{{"flag", true},
                                   {"number", 2.5},
                                   {"text", QStringLiteral("hall")},
                                   {"array", json::QJsonArray{1, 2}},
                                   {"object", json::QJsonObject{{"inner", 7}}}};
    QCOMPARE(object["flag"].toBool(), true);
    QCOMPARE(object["number"].toDouble(), 2.5);
    QCOMPARE(object["number"].toInt(), 2);
    QCOMPARE(object["text"].toString(), QStringLiteral("hall"));
    QCOMPARE(object["array"].toArray().count(), 2);
    QCOMPARE(object["object"].toObject()["inner"].toInt(), 7);
    QCOMPARE(object["text"].kind(), json::Kind::String);
    const json::QJsonValue &value = object["text"];
    QCOMPARE(value.toString(), QStringLiteral("hall"));
}

void tst_QJsonObject::missingMemberReadsAsNull()
{
    const json::QJsonObject object{{"a", json::QJsonValue()}, {"c", 1}};
    QVERIFY(object.contains("a"));
    for (const char *key : {"", "a", "b", "d"}) {
        QVERIFY(object[key].isNull());
        QCOMPARE(object[key].toInt(), 0);
        QCOMPARE(object[key].toString(), QString());
    }
    QVERIFY(!object.contains("b"));
    QVERIFY(!json::QJsonObject().contains("b"));
    QVERIFY(json::QJsonObject()["b"].isNull());
    QCOMPARE(object.count(), 2);
}

void tst_QJsonObject::copiesShareUntilChanged()
{
    const json::QJsonObject object{{"a", 1}};
    const json::QJsonObject copy = object;
    QCOMPARE(copy.begin(), object.begin());
}

void tst_QJsonObject::changeDetaches()
{
    json::QJsonObject object{{"a", 1}};
    json::QJsonObject copy = object;
    copy.insert("b", 2);
    copy.insert("a", 3);
    QCOMPARE(keys(object), QStringList("a"));
    QCOMPARE(object["a"].toInt(), 1);
    QCOMPARE(copy["a"].toInt(), 3);

    object.insert("self", object);
    QCOMPARE(keys(object["self"].toObject()), QStringList("a"));
}

void tst_QJsonObject::sortsAHugeReversedObject()
{
    constexpr int count = 200000;
    std::vector<Member> members;
    for (int i = count - 1; i >= 0; --i)
        members.push_back({QString::number(i).rightJustified(6, QLatin1Char('0')), i});
    const json::QJsonObject object(std::move(members));
    QCOMPARE(object.count(), count);
    int expected = 0;
    for (const Member &member : object)
        QCOMPARE(member.value.toInt(), expected++);
}

QTEST_GUILESS_MAIN(tst_QJsonObject)
#include "tst_QJsonObject.moc"
