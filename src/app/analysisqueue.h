// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The sources that wait for their analysis, kept in the preferences store under the keys "0", "1", ... in order.

#include <QString>
#include <QStringList>

namespace tavrix
{

class AnalysisQueue
{
public:
    // A new queue in the place of the stored one.
    void fill(const QStringList& sources);
    // Nothing when none waits.
    [[nodiscard]] QString first() const;
    // The first sources, in order; fewer where fewer wait or a gap follows.
    [[nodiscard]] QStringList next(int most) const;
    // Takes the first source out.
    void removeFirst();
    [[nodiscard]] int count() const;
    [[nodiscard]] QStringList sources() const; // in order
    void clear();

private:
    int head_ = 0;  // number of the first key, where a long queue was last left
    int takes_ = 0; // sources taken from long queues
};

} // namespace tavrix
