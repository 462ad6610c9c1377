#pragma once

#include <QByteArray>

#include <cstdint>

/// Takes apart what the fuzzer hands in; zeros follow its end.
class FuzzInput
{
public:
    FuzzInput(const uint8_t *data, size_t size) : m_at(data), m_end(data + size) {}

    bool atEnd() const { return m_at == m_end; }
    quint8 byte() { return atEnd() ? 0 : *m_at++; }
    /// Of so many bytes, the most significant one first.
    quint32 number(int bytes)
    {
        quint32 value = 0;
        for (int i = 0; i < bytes; ++i)
            value = value << 8 | byte();
        return value;
    }
    QByteArray bytes(int count)
    {
        const int taken = int(qMin<qint64>(count, m_end - m_at));
        const QByteArray result(reinterpret_cast<const char *>(m_at), taken);
        m_at += taken;
        return result;
    }
    QByteArray rest() { return bytes(int(m_end - m_at)); }

private:
    const uint8_t *m_at;
    const uint8_t *const m_end;
};
