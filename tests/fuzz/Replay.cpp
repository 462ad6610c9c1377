#include <QByteArray>
#include <QDir>
#include <QFile>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

/// Hands a target each file of the folder named: in the ordinary build, without a fuzzer.
int main(int argc, char **argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    const QDir folder(argc == 2 ? QFile::decodeName(argv[1]) : QString());
    const QStringList names = folder.entryList(QDir::Files, QDir::Name);
    for (const QString &name : names) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "%s cannot be read\n", qPrintable(file.fileName()));
            return 1;
        }
        const QByteArray input = file.readAll();
        // Told before: the name is missed most when the program does not come back.
        std::fprintf(stderr, "%s\n", qPrintable(name));
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(input.constData()), size_t(input.size()));
    }
    std::fprintf(stderr, "%d inputs\n", int(names.size()));
    return names.isEmpty() || argc != 2 ? 1 : 0;
}
