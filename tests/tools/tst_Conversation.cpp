#include "loggersim/Conversation.h"
#include "loggersim/NetworkLogger.h"

#include <QSignalSpy>
#include <QTest>

using namespace loggersim;

namespace {

/// A wire to a station that says what the test says, and takes bytes only when the test lets it.
class FakeWire : public QIODevice
{
public:
    FakeWire() { open(ReadWrite | Unbuffered); }

    void say(const QByteArray &bytes)
    {
        m_said += bytes;
        emit readyRead();
    }
    QByteArray take(qint64 count)
    {
        const QByteArray bytes = m_waiting.left(static_cast<int>(count));
        m_waiting.remove(0, bytes.size());
        emit bytesWritten(bytes.size());
        return bytes;
    }
    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override { return m_said.size(); }
    qint64 bytesToWrite() const override { return m_waiting.size(); }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        const int count = static_cast<int>(qMin<qint64>(maxSize, m_said.size()));
        std::copy_n(m_said.constData(), count, data);
        m_said.remove(0, count);
        return count;
    }
    qint64 writeData(const char *data, qint64 size) override
    {
        m_waiting.append(data, static_cast<int>(size));
        return size;
    }

private:
    QByteArray m_said;
    QByteArray m_waiting;
};

Fault fault(const QString &text)
{
    QString error;
    return parseFault(text, &error).value_or(Fault{});
}

} // namespace

class tst_Conversation : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void countsOnlyWhatIsWhollyWritten();
    void tellsTheValuesServed();
    void closesOnlyWhenWhollyWritten();
    void stationThatNeverReadsGetsABoundedAmount();
    void floodWaitsForTheStation();
    void lateAnswersAreBounded();

private:
    std::unique_ptr<NetworkLogger> m_logger;
    std::unique_ptr<FakeWire> m_wire;
    std::unique_ptr<Conversation> m_talk;
};

void tst_Conversation::init()
{
    m_talk.reset();
    m_logger = std::make_unique<NetworkLogger>("020000000001", climateOf(0), 1);
    m_wire = std::make_unique<FakeWire>();
    m_talk = std::make_unique<Conversation>(m_wire.get(), m_logger.get(), nullptr);
}

void tst_Conversation::countsOnlyWhatIsWhollyWritten()
{
    m_wire->say("ATDC\r\nATDC\r\n");
    QCOMPARE(m_logger->served(), quint64(0));
    const qint64 first = m_wire->bytesToWrite() / 2;
    m_wire->take(first - 1);
    QCOMPARE(m_logger->served(), quint64(0));
    m_wire->take(1);
    QCOMPARE(m_logger->served(), quint64(1));
    m_wire->take(first);
    QCOMPARE(m_logger->served(), quint64(2));
}

void tst_Conversation::tellsTheValuesServed()
{
    QSignalSpy served(m_logger.get(), &SimLogger::readingServed);
    m_logger->curve().hold({2150, 4510});
    m_wire->say("ATDC\r\n");
    QCOMPARE(served.size(), 0);
    m_wire->take(m_wire->bytesToWrite());
    m_logger->setFault(fault("dashes:2"));
    m_wire->say("ATDC\r\n");
    m_wire->take(m_wire->bytesToWrite());
    m_logger->setFault(fault("nan"));
    m_wire->say("ATDC\r\n");
    m_wire->take(m_wire->bytesToWrite());
    QCOMPARE(served.size(), 2);
    QCOMPARE(served.at(0).at(0).toByteArray(), QByteArray("21.50,45.10"));
    QCOMPARE(served.at(1).at(0).toByteArray(), QByteArray("21.50,----"));
}

void tst_Conversation::closesOnlyWhenWhollyWritten()
{
    QSignalSpy finished(m_talk.get(), &Conversation::finished);
    m_logger->setFault(fault("closeafter"));
    m_wire->say("ATDC\r\n");
    m_wire->take(m_wire->bytesToWrite() - 1);
    QCOMPARE(finished.size(), 0);
    m_wire->take(1);
    QCOMPARE(finished.size(), 1);
}

void tst_Conversation::stationThatNeverReadsGetsABoundedAmount()
{
    m_logger->setFault(fault("manylines:100000"));
    for (int i = 0; i < 1000; ++i)
        m_wire->say("ATDC\r\n");
    QVERIFY(m_wire->bytesToWrite() < 8 * 1024 * 1024);
    m_wire->take(m_wire->bytesToWrite());
    m_logger->setFault({});
    m_wire->say("ATDC\r\n");
    QVERIFY(m_wire->bytesToWrite() > 0);
}

void tst_Conversation::floodWaitsForTheStation()
{
    m_logger->setFault(fault("flood:65536"));
    QTRY_VERIFY(m_wire->bytesToWrite() > 0);
    const qint64 chunk = m_wire->bytesToWrite();
    NetworkLogger other("020000000002", climateOf(1), 2);
    FakeWire otherWire;
    Conversation otherTalk(&otherWire, &other, nullptr);
    other.setFault(fault("flood:65536"));
    // Several rounds of the other flood: this one must not have grown meanwhile.
    for (int i = 0; i < 3; ++i) {
        QTRY_VERIFY(otherWire.bytesToWrite() > 0);
        otherWire.take(otherWire.bytesToWrite());
    }
    QCOMPARE(m_wire->bytesToWrite(), chunk);
}

void tst_Conversation::lateAnswersAreBounded()
{
    m_logger->setFault(fault("slow:3600000"));
    for (int i = 0; i < 1000; ++i)
        m_wire->say("ATDC\r\n");
    QCOMPARE(m_wire->bytesToWrite(), qint64(0));
    m_logger->setFault({});
    const QByteArray answers = m_wire->take(m_wire->bytesToWrite());
    QVERIFY(answers.count('\n') > 0);
    QVERIFY(answers.count('\n') <= 64);
}

QTEST_GUILESS_MAIN(tst_Conversation)
#include "tst_Conversation.moc"
