#include "LatenessWatch.h"

#include <algorithm>
#include <chrono>

namespace {

constexpr std::chrono::milliseconds step(20);

} // namespace

LatenessWatch::LatenessWatch() : m_thread(&LatenessWatch::run, this) {}

LatenessWatch::~LatenessWatch()
{
    m_isEnding = true;
    m_thread.join();
}

void LatenessWatch::run()
{
    using namespace std::chrono;
    while (!m_isEnding) {
        const auto due = steady_clock::now() + step;
        std::this_thread::sleep_until(due);
        const auto late = int(duration_cast<milliseconds>(steady_clock::now() - due).count());
        m_latest = std::max(m_latest.load(), late);
    }
}
