#include "app/CheckCommand.h"

#include "store/FullCheck.h"

#include <cstdio>

namespace {

constexpr int damagedCode = 1;
constexpr int unreadableCode = 3;

void showProgress(int percent)
{
    if (percent < 100)
        std::fprintf(stderr, "\r%d %%", percent);
    else
        std::fputs("\rEverything is read; comparing the index with the readings.\n", stderr);
}

} // namespace

int checkRecordingCommand(const QString &path)
{
    const FullCheckResult result = checkWholeRecording(path, showProgress);
    const QByteArray finding = result.finding.toLocal8Bit();
    switch (result.verdict) {
    case FullVerdict::Whole:
        std::printf("The recording is whole: %lld readings.\n", static_cast<long long>(result.rows));
        return 0;
    case FullVerdict::Damaged:
        std::printf("The recording is damaged; %lld readings can be read.\n%s\n", static_cast<long long>(result.rows),
                    finding.constData());
        return damagedCode;
    case FullVerdict::Unreadable:
        break;
    }
    std::fprintf(stderr, "%s: %s\n", qPrintable(path), finding.constData());
    return unreadableCode;
}
