// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_HISTOGRAMFRAMETIMES_H
#define KESTRIN_ORV_HISTOGRAMFRAMETIMES_H

#include <Kestrin/Orv/Export.h>

#include <QtCore/QMap>
#include <QtCore/QMutex>

namespace Kestrin {
namespace Orv {

/// Counts frame times in buckets of 500 microseconds and writes them to Qt's debug log on request.
///
/// When the counted times sum up to more than a minute, the next frame first calls flush(), which
/// empties the histogram. A derived class whose flush() calls dump() and then clear() gets each
/// minute written out.
///
/// Any thread may call addFrameTimeUS(), clear() and dump() at any time; a mutex guards the fields.
/// It is not recursive: an overriding flush() or dump() that holds it must not call these
/// operations. Derived classes lock it to read or change the fields.
class ORV_EXPORT HistogramFrameTimes
{
public:
    /// An empty histogram.
    HistogramFrameTimes();
    /// Calls this class's own flush(), not an overriding one.
    virtual ~HistogramFrameTimes();
    HistogramFrameTimes(const HistogramFrameTimes&) = delete;
    HistogramFrameTimes& operator=(const HistogramFrameTimes&) = delete;

    /// Counts one frame of \p us microseconds in the bucket of the next lower multiple of 500. A
    /// frame of 1000500 or more is ignored. Logarithmic in the number of buckets, 2001 at most.
    void addFrameTimeUS(unsigned int us);
    /// Empties the histogram; what it held is not written.
    void clear();

    /// Called without the lock, before a frame is counted, when `totalTimeUS` exceeds 60 seconds.
    /// Calls clear() here.
    virtual void flush();
    /// Writes nothing when no frame was counted; otherwise a line of totals ("TIME DUMP") and one
    /// line per bucket in ascending order: microseconds, count, and a mark, "<" for the peak bucket
    /// and "|" for one with more than a tenth of the peak's count. Changes nothing.
    virtual void dump();

protected:
    QMutex mutex;                             ///< guards all fields below
    QMap<unsigned int, unsigned int> buckets; ///< bucket in microseconds to number of frames
    quint32 frameCount;                       ///< frames counted
    quint32 totalTimeUS;                      ///< sum of the buckets counted
    quint32 minTimeUS;                        ///< smallest bucket counted; 1000000 when empty
    quint32 peakBucketUS;                     ///< the bucket that was first to reach `peakCount`
    quint32 peakCount;                        ///< the highest count of a bucket
};

} // namespace Orv
} // namespace Kestrin

#endif
