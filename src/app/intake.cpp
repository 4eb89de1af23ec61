#include "app/intake.h"

#include "app/analysismachine.h"
#include "app/batchmachine.h"
#include "app/droparea.h"
#include "app/session.h"
#include "app/windowmodel.h"
#include "base/log.h"

#include <QSet>

namespace tavrix
{

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
    QSet<QString> seen;
    QStringList fresh;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString& path = paths.at(i);
        if (seen.contains(path) || rows.indexOfSource(path) >= 0) {
            logLine(QStringLiteral("doublon : pas de sur-analyse pour rien ;-) #%d/%d : %@"),
                    {i + 1, qint64(paths.size()), path});
            continue;
        }
        seen.insert(path);
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
