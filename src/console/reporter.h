// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/text/cliptime.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <cstdio>
#include <optional>

namespace tavrix
{

// One finished row of the summary.
struct RowReport {
    QString source;
    QString output; // nothing for a failed row
    QString reason; // why it failed; nothing for a finished one
    qint64 bytes = 0;
    bool success = false;
    QString warning = {};              // what the output lacks, or what is odd about it; nothing otherwise
    bool kept = false;                 // failed only because what stood under its name was to be kept
    bool incomplete = false;           // it holds all that could be read of a damaged source
    std::optional<ClipPart> part = {}; // of the source; nothing: all of it
};

// How far the row is that is being encoded.
struct RowProgress {
    float value = 0; // both in what the bar of the window counts: seconds of the clip, or percent
    float maximum = 0;
    int pass = 1; // from 1
    int passes = 1;
    double fraction = 0;             // of the pass, 0 to 1, by what its tool says of itself
    double speed = 0;                // seconds of the clip in a second; 0: not known yet
    std::optional<double> left = {}; // seconds of work for the clip; no value as long as it is not known
};

// What would become of a row.
struct PlannedRow {
    int number = 0; // from 1
    int total = 0;
    QString source; // full paths
    QString output;
    int out = 0;           // output format
    qint64 bytes = -1;     // about; -1 when it cannot be told
    bool exists = false;   // something stands under the output's name
    bool sameName = false; // an earlier row gets the same name
    bool readable = true;  // false: the row would fail
};

// What never became a finished row.
struct NotConverted {
    NotConverted(int leftOutCount = 0, int notBegunCount = 0) : leftOut(leftOutCount), notBegun(notBegunCount) {}

    int leftOut;  // no row
    int notBegun; // rows whose turn has not come
};

// Tells a person or a program what happens. Every call is made on the main thread, in order.
class Reporter
{
public:
    virtual ~Reporter() = default;
    // Sources of one intake, before the first is analysed.
    virtual void queued(int count) = 0;
    // Numbers of sources and rows count from 1; paths are full unless told otherwise.
    virtual void analysing(const QString& path, int number, int total) = 0;
    virtual void accepted(const QString& path, const QVariantMap& infos) = 0;
    virtual void rejected(const QString& path, const QString& reason) = 0;
    // The source is the file's name; the part is nothing when all of it is converted.
    virtual void rowStarted(int number, int total, const QString& source, const std::optional<ClipPart>& part) = 0;
    // The beginning of every pass is told, too: its fraction is 0.
    virtual void rowProgress(const RowProgress& progress) = 0;
    virtual void rowFinished(int number, int total, const RowReport& row) = 0;
    // A message that the window would show as an alert; `answer` is what was answered for the user, or nothing.
    virtual void message(const QString& title, const QString& text, const QString& answer) = 0;
    // What the window would show as a sheet: it tells of an end, and the summary tells that, too.
    virtual void notice(const QString& title, const QString& text) = 0;
    // The last call of a run that was to convert nothing. The folder is the one that the outputs would go to.
    virtual void plan(const QList<PlannedRow>& rows, int leftOut, const QString& folder, int exitCode) = 0;
    // The last call. The folder is the one of the outputs.
    virtual void summary(const QList<RowReport>& rows, const NotConverted& others, const QString& folder,
                         int exitCode) = 0;
};

} // namespace tavrix
