#include "store/SpoolChange.h"

#include <algorithm>
#include <map>

namespace {

void removeGone(std::vector<PendingRow> &rows, const std::vector<SpoolChange::Range> &gone)
{
    const auto isGone = [&gone](const PendingRow &row) {
        return std::any_of(gone.cbegin(), gone.cend(),
                           [&row](const SpoolChange::Range &range) { return range.contains(row.number); });
    };
    rows.erase(std::remove_if(rows.begin(), rows.end(), isGone), rows.end());
}

} // namespace

void SpoolChange::add(const SpoolChange &later)
{
    if (!later.gone.empty())
        removeGone(rows, later.gone);
    rows.insert(rows.end(), later.rows.cbegin(), later.rows.cend());
    for (const Range &range : later.gone) {
        if (!gone.empty() && gone.back().last + 1 == range.first)
            gone.back().last = range.last;
        else
            gone.push_back(range);
    }
    if (later.storedUpTo)
        storedUpTo = later.storedUpTo;
    if (!later.takenIn.isEmpty())
        takenIn = later.takenIn;
}

void SpoolChange::applyTo(std::vector<PendingRow> &waiting) const
{
    std::map<qint64, PendingRow> byNumber;
    for (const PendingRow &row : waiting)
        byNumber[row.number] = row;
    for (const PendingRow &row : rows)
        byNumber[row.number] = row;
    waiting.clear();
    for (const auto &row : byNumber)
        waiting.push_back(row.second);
    removeGone(waiting, gone);
}
