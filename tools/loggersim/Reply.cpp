#include "loggersim/Reply.h"

namespace loggersim {

namespace {

QByteArray line(const QByteArray &echo, const QByteArray &values)
{
    return echo + ' ' + values + "\r\n";
}

QByteArray everyByte()
{
    QByteArray bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

QByteArray withDashes(int channel, const QByteArray &values)
{
    QByteArrayList fields = values.split(',');
    for (int i = 0; i < fields.size(); ++i) {
        if (channel == 0 || channel == i + 1)
            fields[i] = "----";
    }
    return fields.join(',');
}

/// The text of a reply that a station must survive but cannot take for a reading; empty for all other faults.
QByteArray hostileText(const Fault &fault, const QByteArray &echo, const QByteArray &values)
{
    switch (fault.kind) {
    case FaultKind::NoEcho:
        return values + "\r\n";
    case FaultKind::Garbage:
        return QByteArrayLiteral("#\x7f~%s,,;{}\\,-.e+\r\n\xc3\x28,\xff\xfe,@@\r\r\n\n,");
    case FaultKind::NotANumber:
        return line(echo, QByteArrayLiteral("nan,inf"));
    case FaultKind::HugeNumbers:
        return line(echo, QByteArray(4000, '9') + ",-" + QByteArray(4000, '8'));
    case FaultKind::LargeNumbers: {
        const QByteArray reading = line(echo, QByteArrayLiteral("1e308,1e308"));
        return reading.repeated(fault.number * 1024 / reading.size());
    }
    case FaultKind::Quotes:
        return line(echo, QByteArrayLiteral("'21.50'),('x',1,1,1);--,\"45.10\"';"));
    case FaultKind::Binary:
        return line(echo, everyByte() + ',' + everyByte());
    case FaultKind::ManyLines:
        return line(echo, values).repeated(fault.number);
    default:
        return {};
    }
}

/// Cut where it hurts: within the echo, before the comma and within the line end.
QByteArrayList inPieces(const QByteArray &text)
{
    const int comma = text.indexOf(',');
    return {text.left(2), text.mid(2, comma - 2), text.mid(comma, text.size() - 1 - comma), text.right(1)};
}

} // namespace

Reply pollReply(const Fault &fault, const QByteArray &echo, const QByteArray &values)
{
    Reply reply;
    if (const QByteArray hostile = hostileText(fault, echo, values); !hostile.isEmpty()) {
        reply.pieces = {hostile};
        return reply;
    }
    reply.isReading = true;
    reply.values = fault.kind == FaultKind::Dashes ? withDashes(fault.number, values) : values;
    reply.pieces = {line(echo, reply.values)};
    if (fault.kind == FaultKind::Split) {
        reply.pieces = inPieces(reply.pieces.first());
        reply.pauseMs = fault.number;
    }
    return reply;
}

} // namespace loggersim
