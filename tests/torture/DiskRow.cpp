// A small disk is filled over and over while the station records on it, and gets space again.

#include "Shard.h"
#include "TortureRows.h"
#include "TorturedStation.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QStorageInfo>

#include <algorithm>
#include <sys/mount.h>

namespace {

constexpr int loggers = 12;
constexpr qint64 megabyte = 1024 * 1024;
constexpr int longestWaitMs = 2500;

const QString committed = QStringLiteral("commit transaction : true");

class Filler
{
public:
    Filler(Shard &shard, TorturedStation &tortured)
        : m_shard(shard), m_tortured(tortured), m_path(tortured.folder() + QStringLiteral("/films"))
    {
    }

    void run()
    {
        if (!m_tortured.start())
            return;
        // Without room for a new recording the station has nothing to do but to say so.
        if (!m_tortured.e2e().waitUntil([this] { return m_tortured.station().count(committed) > 0; }))
            m_shard.find(QString::fromLocal8Bit(m_tortured.station().lastWords()));
        for (int round = 0; round < m_shard.order().rounds; ++round) {
            // Below what the station asks for, more often to the last byte or nearly so.
            const int kind = m_shard.below(4);
            const qint64 left = kind == 0   ? 0
                                : kind == 1 ? m_shard.below(int(megabyte) / 4)
                                            : m_shard.below(17 * megabyte);
            if (!wait() || !fill(left) || !wait())
                return;
            QFile::remove(m_path);
            m_shard.endRound(QStringLiteral("filled up to %1 bytes").arg(left));
        }
        m_tortured.finish();
        m_tortured.judge(m_tortured.e2e().rows());
    }

private:
    bool wait()
    {
        const QDeadlineTimer moment(m_shard.below(longestWaitMs));
        if (m_tortured.e2e().waitUntil([&] { return moment.hasExpired(); }))
            return true;
        m_shard.find(QString::fromLocal8Bit(m_tortured.station().lastWords()));
        return false;
    }

    bool fill(qint64 bytesLeft)
    {
        QFile file(m_path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
            m_shard.find(QStringLiteral("the disk cannot be filled: ") + file.errorString());
            return false;
        }
        const QByteArray piece(int(megabyte), 'x');
        const auto left = [this] {
            return QStorageInfo(m_tortured.folder()).bytesAvailable();
        };
        for (qint64 more = left() - bytesLeft; more > 0; more = left() - bytesLeft) {
            if (file.write(piece.constData(), std::min(more, megabyte)) <= 0)
                break; // the station was quicker
        }
        return true;
    }

    Shard &m_shard;
    TorturedStation &m_tortured;
    const QString m_path;
};

} // namespace

void runFullDisks(Shard &shard)
{
    // In mounts of this process' own.
    const QByteArray folder = shard.path("project").toLocal8Bit();
    if (!QDir().mkpath(shard.path("project")) || ::mount("tmpfs", folder.constData(), "tmpfs", 0, "size=24m") != 0) {
        shard.find(QStringLiteral("no disk of its own can be mounted"));
        return;
    }
    {
        TorturedStation tortured(shard, loggers);
        Filler(shard, tortured).run();
    }
    shard.keepEvidence();
    ::umount2(folder.constData(), MNT_DETACH);
}
