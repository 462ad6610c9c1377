#include "app/StationState.h"

#include <QTest>

namespace {

const QList<StationState::Name> allStates{StationState::StartScreen, StationState::Creating, StationState::Open,
                                          StationState::Recording,   StationState::Editing,  StationState::Ending};

const QMap<StationState::Name, QSet<StationState::Name>> ways{
    {StationState::StartScreen, {StationState::Creating, StationState::Open, StationState::Ending}},
    {StationState::Creating, {StationState::Open, StationState::StartScreen, StationState::Ending}},
    {StationState::Open,
     {StationState::Recording, StationState::Editing, StationState::StartScreen, StationState::Ending}},
    {StationState::Recording, {StationState::Open}},
    {StationState::Editing, {StationState::Open, StationState::StartScreen, StationState::Ending}},
    {StationState::Ending, {}},
};

/// A station that was led there from the start screen.
StationState stationIn(StationState::Name name)
{
    StationState state;
    if (name == StationState::Recording || name == StationState::Editing)
        state.become(StationState::Open);
    state.become(name);
    return state;
}

} // namespace

/// Where a station may stand, and the ways between.
class tst_StationState : public QObject
{
    Q_OBJECT

private slots:
    void beginsWithTheStartScreen() { QCOMPARE(StationState().name(), StationState::StartScreen); }

    void onlyTheseWaysLeadOn()
    {
        for (const StationState::Name from : allStates) {
            for (const StationState::Name to : allStates) {
                StationState state = stationIn(from);
                QCOMPARE(state.name(), from);
                const bool isWay = from == to || ways.value(from).contains(to);
                const QByteArray way = QByteArray::number(from) + " to " + QByteArray::number(to);
                QVERIFY2(state.canBecome(to) == isWay, way.constData());
                QVERIFY2(state.become(to) == isWay, way.constData());
                QCOMPARE(state.name(), isWay ? to : from);
            }
        }
    }

    void whatFollowsFromAState_data()
    {
        QTest::addColumn<int>("name");
        QTest::addColumn<QString>("facts");
        QTest::newRow("start screen") << int(StationState::StartScreen) << "";
        QTest::newRow("creating") << int(StationState::Creating) << "project";
        QTest::newRow("open") << int(StationState::Open) << "project open";
        QTest::newRow("recording") << int(StationState::Recording) << "project open recording";
        QTest::newRow("editing") << int(StationState::Editing) << "project";
        QTest::newRow("ending") << int(StationState::Ending) << "ending";
    }

    void whatFollowsFromAState()
    {
        QFETCH(int, name);
        const StationState state = stationIn(StationState::Name(name));
        QStringList facts;
        if (state.hasProject())
            facts << QStringLiteral("project");
        if (state.isProjectOpen())
            facts << QStringLiteral("open");
        if (state.isRecording())
            facts << QStringLiteral("recording");
        if (state.isEnding())
            facts << QStringLiteral("ending");
        QTEST(facts.join(QLatin1Char(' ')), "facts");
    }
};

QTEST_APPLESS_MAIN(tst_StationState)
#include "tst_StationState.moc"
