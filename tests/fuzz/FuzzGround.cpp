#include "FuzzGround.h"

#include "FuzzInput.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int sector = 512;

QString folder()
{
    static const QTemporaryDir dir;
    return dir.path();
}

/// What is at work as long as the program runs.
void prepare(int &argc, char **argv)
{
    static const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("sorvanto.*=false"));
    qputenv("XDG_CONFIG_HOME", folder().toLocal8Bit());
    qputenv("XDG_CONFIG_DIRS", folder().toLocal8Bit() + "/none");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    prepare(*argc, *argv);
    return 0;
}

void require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

QString fuzzFile(const char *name)
{
    return folder() + QLatin1Char('/') + QLatin1String(name);
}

void removeFuzzFiles()
{
    QDir dir(folder());
    const QStringList names = dir.entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : names)
        dir.remove(name);
}

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size(),
            "the target's folder takes a file");
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray damaged(QByteArray whole, FuzzInput &input)
{
    const QByteArray before = whole;
    while (!input.atEnd() && !whole.isEmpty()) {
        const quint32 word = input.number(3);
        const int kind = int(word >> 22);
        const int at = int(word & 0x3fffff) % int(whole.size());
        const int sectorStart = at / sector * sector;
        if (kind == 0) {
            whole[at] = char(input.byte());
        } else if (kind == 1) {
            whole.truncate(at);
        } else if (kind == 2) {
            const int size = qMin(sector, int(whole.size()) - sectorStart);
            whole.replace(sectorStart, size, QByteArray(size, '\0'));
        } else {
            const QByteArray stale = before.mid(int(input.byte()) * sector, sector);
            whole.replace(sectorStart, qMin(int(stale.size()), int(whole.size()) - sectorStart), stale);
        }
    }
    return whole;
}
