// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A look at clips before their turn, on processors that the analysis of one clip leaves idle.

#include "process/childprocess.h"

#include <QStringList>

#include <vector>

namespace tavrix
{

// Starts the tool for the clips that come next; what it finds waits in the temporary folder for the run that asks for
// it, and saves time only: a look that fails, hangs or comes too late leaves everything as it is without.
class AnalysisAhead
{
public:
    AnalysisAhead() = default;
    // Ends what runs.
    ~AnalysisAhead();
    AnalysisAhead(const AnalysisAhead&) = delete;
    AnalysisAhead& operator=(const AnalysisAhead&) = delete;

    // How many clips are looked at at a time on a machine with so many processors; 0: none.
    [[nodiscard]] static int width(int processors);

    // How many of the clips that come next are had in view: so many at a time and one more. 0 where none are.
    [[nodiscard]] static int reach();

    // The clips that come next, in order. Main thread only.
    void lookAt(const QStringList& sources);
    // No more clips come: ends what runs and removes what nobody has asked for.
    void end();

private:
    void dropEnded();

    std::vector<ChildProcess> running_;
    QStringList looked_; // of the clips that come next, those that have had their look
};

} // namespace tavrix
