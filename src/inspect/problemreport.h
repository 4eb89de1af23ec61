// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The text that goes with a report of a problem: all of it is shown before anything leaves.

#include "inspect/systemfacts.h"

#include <QStringList>

namespace tavrix
{

struct ReportWish {
    bool fullPaths = false; // otherwise paths in the logs are cut to their last part
    int logLines = 100;     // of each log, from its end; 0 for none
};

// System information and the last lines of both logs, as one text of whole lines.
[[nodiscard]] QString problemReport(const ReportWish& wish = {});

// The text of given facts and logs; a log is a heading and its lines.
struct ReportLog {
    QString heading;
    QStringList lines;
};
[[nodiscard]] QString reportText(const QList<SystemFact>& facts, const QList<ReportLog>& logs, bool fullPaths);

// The last whole lines of a text file, in order and without their ends; of a very long log only the end is read. Empty
// for a file that is absent or cannot be read, or is no regular file.
[[nodiscard]] QStringList lastLines(const QString& path, int count);

} // namespace tavrix
