// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How long a batch will still take, from how long it has taken so far.

#include <QHash>
#include <QList>
#include <QtGlobal>

#include <optional>

namespace tavrix
{

// A clip by what its encode's length depends on.
struct ClipWork {
    double seconds = 0; // of the clip
    int out = 0;        // output format
};

// Free of clocks: every call says when it is, in milliseconds that never run backwards. Times in which the encode was
// paused do not count.
class RunEstimate
{
public:
    void beginBatch();
    // A pass of a clip begins; passes count from 1.
    void beginPass(qint64 now, const ClipWork& clip, int pass, int passes);
    // How much of the pass is done, 0 to 1.
    void progress(qint64 now, double fraction);
    void setPaused(qint64 now, bool paused);
    // What a failed clip has taken says nothing about the others.
    void endClip(qint64 now, bool converted);

    // Seconds; no value as long as too little is known to say it.
    [[nodiscard]] std::optional<double> clipLeft(qint64 now) const;
    // Seconds of the clip that the pass makes in a second; 0 as long as too little is known.
    [[nodiscard]] double speed(qint64 now) const;
    // The time left for the clip and those that wait.
    [[nodiscard]] std::optional<double> batchLeft(qint64 now, const QList<ClipWork>& waiting) const;

private:
    // Of clips that are over, by format.
    struct Pace {
        double taken = 0;      // seconds of work
        double secondPass = 0; // of these, in the second pass
        double seconds = 0;    // of the clips
    };
    [[nodiscard]] double worked(qint64 now, qint64 since) const;
    [[nodiscard]] std::optional<double> passLeft(qint64 now) const;
    [[nodiscard]] std::optional<double> paceOf(int out, std::optional<double> clipLeft, qint64 now) const;

    QHash<int, Pace> paces_;
    ClipWork clip_;
    int pass_ = 0; // 0: none runs
    int passes_ = 1;
    double fraction_ = 0;
    qint64 clipBegan_ = 0;
    qint64 passBegan_ = 0;
    qint64 pausedAt_ = -1;
    qint64 progressAt_ = 0; // of the last progress
};

} // namespace tavrix
