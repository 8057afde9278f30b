// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_NEARESTNAMES_H
#define KESTRIN_ORV_PROGRAM_NEARESTNAMES_H

#include <QtCore/QString>
#include <QtCore/QVector>

namespace Kestrin::Orv::Program {

/// Keeps the names that are most similar to a wanted name, for suggestions after a typing error.
class NearestNames
{
public:
    /// How many names it keeps.
    static const int kMaximum = 5;

    /// \param segment of a path; its number in brackets is ignored.
    explicit NearestNames(const QString& segment);

    /// Offers a name, which is kept if it is similar enough.
    /// \param rank decides between equally similar names: a lower rank comes first.
    void add(const QString& name, int id, int rank);

    /// The ids of the names, the most similar name first.
    QVector<int> ids() const;

private:
    struct Hit
    {
        int distance;
        int rank;
        int id;
        bool operator<(const Hit& other) const
        {
            return distance != other.distance ? distance < other.distance : rank < other.rank;
        }
    };

    QString wanted;
    int limit;
    QVector<Hit> hits;
};

} // namespace Kestrin::Orv::Program

#endif
