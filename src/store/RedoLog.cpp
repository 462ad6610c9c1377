#include "store/RedoLog.h"

#include "store/Logging.h"
#include "store/PackedChange.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <cstring>

#ifdef Q_OS_UNIX
#include <sys/file.h>
#endif

namespace {

// The file: a header, then rings, each twice as large as the one before it. The last one is in use; it is the only one
// until the disk stays away for minutes. Positions count all bytes ever written, modulo the ring's size they are
// places.
const QByteArray magic = QByteArrayLiteral("SvRedo01");
constexpr qint64 headerSize = 4096;
constexpr quint64 ringPlace = 8; ///< the number of the ring in use
constexpr quint64 beginPlace = 64;
constexpr quint64 endPlace = 128;
constexpr quint64 recordingPlace = 192; ///< the path of the recording, for people; cut where it is too long
constexpr int recordingSize = headerSize - recordingPlace;
constexpr quint64 smallestRing = 256 * 1024;
constexpr quint64 mostRings = 8;

using Word = std::atomic<quint64>;
static_assert(Word::is_always_lock_free && sizeof(Word) == sizeof(quint64), "another process has to read it");

Word &word(uchar *memory, quint64 place)
{
    return *reinterpret_cast<Word *>(memory + place);
}

quint64 ringSize(quint64 ring)
{
    return smallestRing << ring;
}

qint64 ringStart(quint64 ring)
{
    return headerSize + qint64(ringSize(ring) - smallestRing);
}

/// FNV-1a, of a change together with its position: what an earlier round of the ring has left is none.
quint64 checksum(quint64 position, const QByteArray &bytes)
{
    constexpr quint64 prime = 0x100000001b3;
    quint64 hash = (0xcbf29ce484222325 ^ position) * prime;
    for (const char byte : bytes)
        hash = (hash ^ uchar(byte)) * prime;
    return hash;
}

constexpr int frameSize = sizeof(quint64) + sizeof(quint32);

QString logName(const QByteArray &recording)
{
    const QByteArray hash = QCryptographicHash::hash(recording, QCryptographicHash::Sha256);
    return QString::fromLatin1(hash.toHex().left(32)) + QLatin1String(".redo");
}

/// The lock is held until the file is closed.
bool isLocked(const QFile &file)
{
#ifdef Q_OS_UNIX
    return ::flock(file.handle(), LOCK_EX | LOCK_NB) == 0;
#else
    return file.isOpen();
#endif
}

void warn(const QString &path, const QString &reason)
{
    qCWarning(lcSpool).noquote().nospace() << "RedoLog::open : [ERROR] " << reason << " : " << path;
}

} // namespace

std::unique_ptr<RedoLog> RedoLog::open(const QString &databaseFile, const QStringList &folders)
{
    const QFileInfo file(databaseFile);
    const QByteArray recording = (file.exists() ? file.canonicalFilePath() : file.absoluteFilePath()).toUtf8();
    const QString name = QLatin1Char('/') + logName(recording);
    const auto left = std::find_if(folders.cbegin(), folders.cend(),
                                   [&name](const QString &folder) { return QFile::exists(folder + name); });
    const QStringList tried = left == folders.cend() ? folders : QStringList(*left);
    for (const QString &folder : tried) {
        std::unique_ptr<RedoLog> log(new RedoLog(folder + name));
        const bool isOpen = log->m_file.open(QIODevice::ReadWrite | QIODevice::Unbuffered);
        const bool isOurs = isOpen && isLocked(log->m_file);
        if (isOurs && (log->openExisting(recording) || log->make(recording)))
            return log;
        warn(log->path(), isOpen && !isOurs ? QStringLiteral("in use") : log->m_file.errorString());
    }
    if (folders.isEmpty())
        warn(databaseFile, QStringLiteral("no folder in memory"));
    return nullptr;
}

RedoLog::~RedoLog()
{
    if (m_memory && isEmpty())
        m_file.remove();
}

bool RedoLog::openExisting(const QByteArray &recording)
{
    if (m_file.size() < headerSize + qint64(smallestRing) || !map())
        return false;
    const auto *path = reinterpret_cast<const char *>(m_memory + recordingPlace);
    if (std::memcmp(m_memory, magic.constData(), size_t(magic.size())) != 0 || ring() >= mostRings ||
        m_file.size() < ringStart(ring()) + qint64(ringSize(ring())) || recording.left(recordingSize - 1) != path)
        return false;
    SpoolChange ignored;
    const quint64 readable = end() - begin() <= ringSize(ring()) ? read(ignored) : begin();
    word(m_memory, endPlace).store(readable, std::memory_order_release);
    return true;
}

bool RedoLog::make(const QByteArray &recording)
{
    unmap(); // or Windows does not let it shrink
    // A memory that is full says so here, not by a signal when it is written to.
    if (!m_file.resize(0) || !m_file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) ||
        !addZeros(headerSize + qint64(smallestRing)) || !map()) {
        m_file.remove();
        return false;
    }
    const QByteArray path = recording.left(recordingSize - 1);
    std::memcpy(m_memory + recordingPlace, path.constData(), size_t(path.size()));
    std::memcpy(m_memory, magic.constData(), size_t(magic.size()));
    return true;
}

bool RedoLog::addZeros(qint64 count)
{
    const QByteArray zeros(int(smallestRing), '\0');
    if (!m_file.seek(m_file.size()))
        return false;
    for (qint64 left = count; left > 0;) {
        const qint64 written = m_file.write(zeros.constData(), std::min<qint64>(left, zeros.size()));
        if (written <= 0)
            return false;
        left -= written;
    }
    return true;
}

bool RedoLog::map()
{
    uchar *memory = m_file.map(0, m_file.size());
    if (!memory)
        return false;
    unmap();
    m_memory = memory;
    return true;
}

void RedoLog::unmap()
{
    if (m_memory)
        m_file.unmap(m_memory);
    m_memory = nullptr;
}

quint64 RedoLog::begin() const
{
    return word(m_memory, beginPlace).load(std::memory_order_acquire);
}

quint64 RedoLog::end() const
{
    // Ended while it was emptied, a program leaves the beginning behind it.
    return std::max(begin(), word(m_memory, endPlace).load(std::memory_order_acquire));
}

SpoolChange RedoLog::content() const
{
    SpoolChange content;
    read(content);
    return content;
}

/// Returns the end of what can be read.
quint64 RedoLog::read(SpoolChange &content) const
{
    const quint64 end = this->end();
    quint64 position = begin();
    while (end - position >= frameSize) {
        QDataStream frame(copyOut(position, frameSize));
        quint64 sum = 0;
        quint32 size = 0;
        frame >> sum >> size;
        if (size > end - position - frameSize)
            break;
        const QByteArray bytes = copyOut(position + frameSize, size);
        SpoolChange change;
        if (sum != checksum(position, bytes) || !unpackChange(bytes, &change))
            break;
        content.rows.insert(content.rows.end(), change.rows.cbegin(), change.rows.cend());
        content.gone.insert(content.gone.end(), change.gone.cbegin(), change.gone.cend());
        if (change.storedUpTo)
            content.storedUpTo = change.storedUpTo;
        position += frameSize + size;
    }
    return position;
}

bool RedoLog::append(const SpoolChange &change)
{
    const QByteArray bytes = packedChange(change);
    if (!makeRoomFor(frameSize + quint64(bytes.size())))
        return false;
    const quint64 position = end();
    QByteArray frame;
    QDataStream(&frame, QIODevice::WriteOnly) << checksum(position, bytes) << quint32(bytes.size());
    copyIn(ring(), position, frame + bytes);
    // It counts from here on.
    word(m_memory, endPlace).store(position + quint64(frame.size() + bytes.size()), std::memory_order_release);
    return true;
}

void RedoLog::discard(quint64 position)
{
    if (position < end()) {
        word(m_memory, beginPlace).store(std::max(begin(), position), std::memory_order_release);
        return;
    }
    // Empty, it begins at the ring's start again: the same few pages of memory do.
    const quint64 size = ringSize(ring());
    const quint64 start = (end() + size - 1) / size * size;
    word(m_memory, beginPlace).store(start, std::memory_order_release);
    word(m_memory, endPlace).store(start, std::memory_order_release);
}

/// Goes on in a larger ring when this one is full: while the disk does not come back, nothing can leave it.
bool RedoLog::makeRoomFor(quint64 size)
{
    const quint64 used = end() - begin();
    while (used + size > ringSize(ring())) {
        const quint64 next = ring() + 1;
        if (next >= mostRings || !addZeros(ringStart(next) + qint64(ringSize(next)) - m_file.size()) || !map())
            return false;
        copyIn(next, begin(), copyOut(begin(), used));
        word(m_memory, ringPlace).store(next, std::memory_order_release);
    }
    return true;
}

quint64 RedoLog::ring() const
{
    return word(m_memory, ringPlace).load(std::memory_order_acquire);
}

void RedoLog::copyIn(quint64 ring, quint64 position, const QByteArray &bytes)
{
    uchar *start = m_memory + ringStart(ring);
    const quint64 place = position % ringSize(ring);
    const auto size = quint64(bytes.size());
    const quint64 untilWrap = std::min(size, ringSize(ring) - place);
    std::memcpy(start + place, bytes.constData(), untilWrap);
    std::memcpy(start, bytes.constData() + untilWrap, size - untilWrap);
}

QByteArray RedoLog::copyOut(quint64 position, quint64 size) const
{
    const auto *start = reinterpret_cast<const char *>(m_memory + ringStart(ring()));
    const quint64 place = position % ringSize(ring());
    const quint64 untilWrap = std::min(size, ringSize(ring()) - place);
    return QByteArray(start + place, int(untilWrap)) + QByteArray(start, int(size - untilWrap));
}
