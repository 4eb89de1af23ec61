// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/intake.h"

#include "app/analysismachine.h"
#include "app/batchmachine.h"
#include "app/droparea.h"
#include "app/session.h"
#include "app/windowmodel.h"
#include "base/text/log.h"

#include <QFileInfo>
#include <QSet>

namespace tavrix
{

namespace
{

// Without links in it; of a file that has gone, the path itself.
QString oneName(const QString& path)
{
    const QString name = QFileInfo(path).canonicalFilePath();
    return name.isEmpty() ? path : name;
}

} // namespace

Intake::Intake(Session& session, DropArea& dropArea, BatchMachine& batch, AnalysisMachine& analysis)
    : session_(session), dropArea_(dropArea), batch_(batch), analysis_(analysis)
{
}

void Intake::take(const QStringList& paths)
{
    if (!dropArea_.isOpen()) {
        dropArea_.refuse();
        Q_EMIT refused(paths);
        return;
    }
    dropArea_.close();
    Q_EMIT began();
    StateButton& start = session_.model().batchEncGoBt;
    if (start.state() == 1) {
        batch_.control().pauseForDrop();
    }
    start.setEnabled(false);
    const IntakeList found = intakeList(paths);
    const QStringList fresh = withoutKnownSources(found.accepted);
    if (fresh.isEmpty()) {
        tellSkipped(found.skipped);
        logLine(QStringLiteral("no compatible file (or no new files ;-))"));
        dropArea_.open();
        release();
        Q_EMIT nothingNew();
        return;
    }
    analysis_.begin(fresh);
    Q_EMIT queued(static_cast<int>(fresh.size()));
    tellSkipped(found.skipped);
    analysis_.step();
}

QStringList Intake::withoutKnownSources(const QStringList& paths) const
{
    const BatchList& rows = session_.model().encBatchArrayController;
    // A row may be of the same file on another way, through a linked folder.
    QSet<QString> seen;
    for (int i = 0; i < rows.count(); ++i) {
        seen.insert(oneName(rows.row(i).source()));
    }
    QStringList fresh;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString& path = paths.at(i);
        const QString name = oneName(path);
        if (seen.contains(name)) {
            logLine(QStringLiteral("doublon : pas de sur-analyse pour rien ;-) #%d/%d : %@"),
                    {i + 1, qint64(paths.size()), path});
            continue;
        }
        seen.insert(name);
        fresh << path;
    }
    return fresh;
}

void Intake::tellSkipped(const QList<SkippedSource>& sources)
{
    for (const SkippedSource& source : sources) {
        Q_EMIT skipped(source.path, source.reason);
    }
}

void Intake::release()
{
    WindowModel& model = session_.model();
    batch_.control().resumeAfterDrop();
    if (model.encBatchArrayController.count() > 0 && model.batchEncGoBt.state() == 0) {
        model.batchEncGoBt.setEnabled(true);
    }
}

} // namespace tavrix
