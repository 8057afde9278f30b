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
/// When the sum of the counted times exceeds a minute, the next frame first calls flush(), which
/// empties the histogram. To write each minute, derive a class whose flush() calls dump() and then
/// clear().
///
/// Any thread may call addFrameTimeUS(), clear() and dump() at any time; a mutex guards the fields.
/// Derived classes lock it to read or change the fields. The mutex is not recursive: an overriding
/// flush() or dump() that holds it must not call these three operations.
class ORV_EXPORT HistogramFrameTimes
{
public:
    /// An empty histogram.
    HistogramFrameTimes();
    /// Calls this class's own flush(), not an overriding one.
    virtual ~HistogramFrameTimes();
    HistogramFrameTimes(const HistogramFrameTimes&) = delete;
    HistogramFrameTimes& operator=(const HistogramFrameTimes&) = delete;

    /// Counts one frame of \p us microseconds. Its bucket is \p us, rounded down to a multiple of
    /// 500. Ignores a frame of 1000500 microseconds or more. Logarithmic in the number of buckets,
    /// which is at most 2001.
    void addFrameTimeUS(unsigned int us);
    /// Empties the histogram without writing it.
    void clear();

    /// Called before a frame is counted, without the lock, when `totalTimeUS` exceeds 60 seconds.
    /// Calls clear() here.
    virtual void flush();
    /// Writes a line of totals ("TIME DUMP") and then one line per bucket in ascending order:
    /// microseconds, count, and a mark. The mark is "<" for the peak bucket and "|" for a bucket
    /// with more than a tenth of the peak's count. Writes nothing when no frame was counted. Does
    /// not change the histogram.
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
