// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "NearestNames.h"

#include <Kestrin/Orv/Inspect/Paths.h>

#include <algorithm>

namespace Kestrin::Orv::Program {

namespace {

/// The number of edits that turn one word into the other. An edit inserts, deletes or replaces a
/// letter, or swaps two neighbours. Returns `limit` + 1 if the number is greater than `limit`.
int editDistance(const QString& a, const QString& b, int limit)
{
    const int tooFar = limit + 1;
    if (qAbs(a.size() - b.size()) > limit)
        return tooFar;
    // The table of the distances between all prefixes, row by row. Only entries within `limit` of
    // the diagonal are computed.
    QVector<int> beforeLast(b.size() + 1, tooFar);
    QVector<int> last(b.size() + 1, tooFar);
    QVector<int> row(b.size() + 1, tooFar);
    for (int j = 0; j <= qMin(limit, b.size()); ++j)
        row[j] = j;
    for (int i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        const int first = qMax(1, i - limit);
        const int end = qMin(b.size(), i + limit);
        row[first - 1] = first == 1 ? qMin(i, tooFar) : tooFar;
        int best = row.at(first - 1);
        for (int j = first; j <= end; ++j) {
            const bool same = a.at(i - 1) == b.at(j - 1);
            int edits = qMin(last.at(j - 1) + (same ? 0 : 1), qMin(last.at(j), row.at(j - 1)) + 1);
            if (i > 1 && j > 1 && a.at(i - 1) == b.at(j - 2) && a.at(i - 2) == b.at(j - 1))
                edits = qMin(edits, beforeLast.at(j - 2) + 1);
            row[j] = qMin(edits, tooFar);
            best = qMin(best, edits);
        }
        if (end < b.size())
            row[end + 1] = tooFar;
        if (best > limit && i > 1)
            return tooFar;
    }
    return row.at(b.size());
}

} // namespace

NearestNames::NearestNames(const QString& segment)
    : wanted(segment.left(segment.indexOf(QLatin1Char('['))).toCaseFolded())
    , limit(qBound(1, wanted.size() / 3, 3))
{
}

void NearestNames::add(const QString& name, int id, int rank)
{
    const int distance = editDistance(wanted, Inspect::Paths::escaped(name).toCaseFolded(), limit);
    if (distance > limit)
        return;
    const Hit hit{distance, rank, id};
    hits.insert(std::upper_bound(hits.begin(), hits.end(), hit), hit);
    if (hits.size() > kMaximum)
        hits.removeLast();
}

QVector<int> NearestNames::ids() const
{
    QVector<int> all;
    for (const Hit& hit : hits)
        all.append(hit.id);
    return all;
}

} // namespace Kestrin::Orv::Program
