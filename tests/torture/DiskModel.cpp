#include "DiskModel.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <algorithm>
#include <cstring>

using watch::Operation;
using watch::OperationRecord;

namespace {

constexpr qint64 sectorSize = 512;

/// Of all files of a content: SQLite makes it anew.
bool isSharedMemory(const QString &name)
{
    return name.endsWith(QLatin1String("-shm"));
}

} // namespace

DiskModel::DiskModel(const QString &folder) : m_folder(folder)
{
    const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        QFile file(folder + QLatin1Char('/') + name);
        if (isSharedMemory(name) || !file.open(QIODevice::ReadOnly))
            continue;
        m_namesBefore.insert(name, int(m_files.size()));
        m_files.append({file.readAll(), {}, 0});
    }
}

void DiskModel::play(const QByteArray &log)
{
    OperationRecord record = {};
    constexpr int head = int(sizeof(record));
    for (int at = 0; at + head <= log.size(); at += head + int(record.size)) {
        std::memcpy(&record, log.constData() + at, sizeof(record));
        if (at + head + qint64(record.size) <= log.size())
            play(record, log.mid(at + head, int(record.size)));
    }
}

void DiskModel::play(const OperationRecord &record, const QByteArray &text)
{
    switch (record.operation) {
    case Operation::Open:
        m_inodes[record.file] = namesAfter(int(m_nameChanges.size())).value(nameOf(text), -1);
        break;
    case Operation::Create:
        m_inodes[record.file] = int(m_files.size());
        m_nameChanges.append({Operation::Create, {}, nameOf(text), int(m_files.size())});
        m_files.append(File());
        break;
    case Operation::Write:
        change(record.file, {false, record.offset, text});
        break;
    case Operation::Truncate:
        change(record.file, {true, record.offset, {}});
        break;
    case Operation::SyncBegin:
        beginSync(record.file);
        break;
    case Operation::SyncEnd:
        endSync(record.file);
        break;
    case Operation::Rename:
    case Operation::Link:
    case Operation::Remove:
        playName(record.operation, text);
        break;
    case Operation::Map:
    case Operation::Shown:
        break;
    }
}

void DiskModel::playName(Operation operation, const QByteArray &text)
{
    const QList<QByteArray> paths = text.split('\0');
    const QString from = nameOf(paths.first());
    const int file = namesAfter(int(m_nameChanges.size())).value(from, -1);
    if (file >= 0)
        m_nameChanges.append({operation, from, nameOf(paths.last()), file});
}

void DiskModel::change(quint64 inode, const Change &change)
{
    const int file = m_inodes.value(inode, -1);
    if (file >= 0)
        m_files[file].pending.append(change);
}

void DiskModel::beginSync(quint64 inode)
{
    const int file = m_inodes.value(inode, -1);
    if (inode == 0)
        m_namesUnderSync = int(m_nameChanges.size());
    else if (file >= 0)
        m_files[file].underSync = int(m_files.at(file).pending.size());
}

void DiskModel::endSync(quint64 inode)
{
    if (inode == 0) {
        m_namesSynced = std::max(m_namesSynced, m_namesUnderSync);
        return;
    }
    const int number = m_inodes.value(inode, -1);
    if (number < 0)
        return;
    File &file = m_files[number];
    for (; file.underSync > 0; --file.underSync)
        apply(file.pending.takeFirst(), file.synced);
    for (int i = m_namesSynced; i < m_nameChanges.size(); ++i) {
        if (m_nameChanges.at(i).file == number)
            m_namesSynced = i + 1;
    }
}

QString DiskModel::nameOf(const QByteArray &path) const
{
    return QString::fromLocal8Bit(path).mid(m_folder.size() + 1);
}

DiskModel::Names DiskModel::namesAfter(int changes) const
{
    Names names = m_namesBefore;
    for (const NameChange &change : m_nameChanges.mid(0, changes)) {
        if (change.operation == Operation::Rename || change.operation == Operation::Remove)
            names.remove(change.from);
        if (change.operation != Operation::Remove)
            names.insert(change.to, change.file);
    }
    return names;
}

DiskModel::Content DiskModel::synced() const
{
    Content content;
    const Names names = namesAfter(m_namesSynced);
    for (auto name = names.cbegin(); name != names.cend(); ++name) {
        if (!isSharedMemory(name.key()))
            content.insert(name.key(), m_files.at(name.value()).synced);
    }
    return content;
}

DiskModel::Content DiskModel::afterCut(QRandomGenerator &random) const
{
    Content content;
    const int unsynced = int(m_nameChanges.size()) - m_namesSynced;
    const Names names = namesAfter(m_namesSynced + int(random.bounded(unsynced + 1)));
    QMap<int, QByteArray> contents; // a file of two names is one file
    for (auto name = names.cbegin(); name != names.cend(); ++name) {
        if (isSharedMemory(name.key()))
            continue;
        if (!contents.contains(name.value()))
            contents.insert(name.value(), torn(m_files.at(name.value()), random));
        content.insert(name.key(), contents.value(name.value()));
    }
    return content;
}

void DiskModel::apply(const Change &change, QByteArray &content)
{
    const auto end = int(change.offset + change.bytes.size());
    if (change.isTruncation || content.size() < end)
        content.append(QByteArray(std::max(0, end - int(content.size())), '\0'));
    if (change.isTruncation)
        content.truncate(end);
    else
        content.replace(int(change.offset), int(change.bytes.size()), change.bytes);
}

/// Nothing, all, a beginning, or any part of what was not synced.
QByteArray DiskModel::torn(const File &file, QRandomGenerator &random)
{
    enum Fate { Nothing, All, Beginning, AnyPart };
    static constexpr Fate fates[] = {Nothing, All, Beginning, AnyPart, AnyPart, AnyPart};
    const Fate fate = fates[random.bounded(6)];
    QByteArray content = file.synced;
    if (fate == Nothing || file.pending.isEmpty())
        return content;
    const int whole = fate == Beginning ? int(random.bounded(int(file.pending.size()))) : int(file.pending.size());
    if (fate != AnyPart) {
        for (const Change &change : file.pending.mid(0, whole))
            apply(change, content);
        return content;
    }
    QList<Change> parts;
    const auto applyParts = [&] {
        std::shuffle(parts.begin(), parts.end(), random);
        for (const Change &part : qAsConst(parts))
            apply(part, content);
        parts.clear();
    };
    for (const Change &change : file.pending) {
        const bool isTorn = random.bounded(2) == 0;
        if (change.isTruncation) {
            applyParts();
            if (isTorn)
                apply(change, content);
            continue;
        }
        const bool isThere = random.bounded(2) == 0;
        for (const Change &sector : sectorsOf(change)) {
            if (isTorn ? random.bounded(2) == 0 : isThere)
                parts.append(sector);
        }
    }
    applyParts();
    return content;
}

QList<DiskModel::Change> DiskModel::sectorsOf(const Change &change)
{
    QList<Change> sectors;
    for (qint64 at = 0; at < change.bytes.size();) {
        const qint64 left = sectorSize - (change.offset + at) % sectorSize;
        sectors.append({false, change.offset + at, change.bytes.mid(int(at), int(left))});
        at += left;
    }
    return sectors;
}

bool DiskModel::put(const Content &content, const QString &folder)
{
    if (!QDir(folder).removeRecursively() || !QDir().mkpath(folder))
        return false;
    for (auto entry = content.cbegin(); entry != content.cend(); ++entry) {
        QFile file(folder + QLatin1Char('/') + entry.key());
        if (!file.open(QIODevice::WriteOnly) || file.write(entry.value()) != entry.value().size())
            return false;
    }
    return true;
}
