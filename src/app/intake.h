// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What is dropped or opened becomes the analysis queue.

#include "probe/intakelist.h"

#include <QObject>
#include <QStringList>

namespace tavrix
{

class AnalysisMachine;
class BatchMachine;
class DropArea;
class Session;

class Intake : public QObject
{
    Q_OBJECT
public:
    // Nothing is owned.
    Intake(Session& session, DropArea& dropArea, BatchMachine& batch, AnalysisMachine& analysis);

    // Files and folders; full paths. Refused as a whole while an earlier intake is analysed.
    void take(const QStringList& paths);
    // The analysis is over, or stalled: the encode goes on.
    void release();

Q_SIGNALS:
    void refused(const QStringList& paths);
    void began();
    void queued(int count);
    void skipped(const QString& path, const QString& reason);
    void nothingNew();

private:
    [[nodiscard]] QStringList withoutKnownSources(const QStringList& paths) const;
    void tellSkipped(const QList<SkippedSource>& sources);

    Session& session_;
    DropArea& dropArea_;
    BatchMachine& batch_;
    AnalysisMachine& analysis_;
};

} // namespace tavrix
