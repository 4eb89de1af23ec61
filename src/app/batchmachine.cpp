// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batchmachine.h"

#include "app/alerttext.h"
#include "app/batchrows.h"
#include "app/batchtally.h"
#include "app/currentrow.h"
#include "app/destination.h"
#include "app/droparea.h"
#include "app/session.h"
#include "app/stepflags.h"
#include "app/windowmodel.h"
#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/store/preferences.h"
#include "base/text/format.h"
#include "base/text/log.h"
#include "encode/outputname.h"
#include "encode/progress.h"
#include "probe/batchtexts.h"

namespace tavrix
{

namespace
{

constexpr int missingSourceAlertSeconds = 10;

// Of the current row's steps.
void leaveOnlyTheFinish()
{
    const QStringList flags = encodeFlags();
    for (qsizetype i = 1; i < flags.size() - 1; ++i) {
        prefDelete(flags.at(i));
    }
    setFlag(flags.last());
}

} // namespace

BatchMachine::BatchMachine(Session& session, DropArea& dropArea, Destination& destination, BatchRows& batchRows,
                           const LauncherMaker& maker)
    : session_(session), dropArea_(dropArea), destination_(destination), batchRows_(batchRows),
      child_(session, maker, "forget to release previous task?"), progress_(session.model()), row_(session),
      control_(session.model().encStopBt, child_, [this] { stop(); })
{
}

void BatchMachine::start()
{
    WindowModel& model = session_.model();
    BatchList& rows = model.encBatchArrayController;
    if (rows.count() == 0) {
        return;
    }
    if (!destination_.settle()) {
        // A stop under its question has found nothing to stop; kept, it would end the next batch.
        model.mainEncProgressInt.setIntValue(0);
        takeFlag(pref::encFin);
        return;
    }
    model.batchEncGoBt.setEnabled(false);
    model.batchEncGoBt.setState(1);
    for (int i = 0; i < rows.count(); ++i) {
        rows.setResultat(i, rowIcon::pending);
        rows.setReason(i, QString());
        rows.setKept(i, false);
        rows.setOutput(i, QString());
        rows.setWarning(i, QString(), false);
    }
    row_.guard().beginBatch();
    send(stepBatch);
}

void BatchMachine::send(const QString& stepName)
{
    steps_.waiting << stepName;
    if (steps_.running) {
        return;
    }
    steps_.running = true;
    while (!steps_.waiting.isEmpty()) {
        const QString name = steps_.waiting.takeFirst();
        logLine(QStringLiteral("stepNameStr : %@"), {name});
        step(name);
    }
    steps_.running = false;
}

void BatchMachine::step(const QString& stepName)
{
    if (session_.isEnding()) {
        return;
    }
    const bool stopped = session_.model().mainEncProgressInt.intValue() != 0;
    if (stopped) {
        honourStop();
    }
    // A stop always ends in the finish step, also when the next row was asked for.
    if (stepName == stepBatch && !stopped) {
        chooseRow();
    } else {
        takeRowStep();
    }
}

void BatchMachine::honourStop()
{
    logLine(QStringLiteral("enc stop = 1"));
    session_.model().mainEncProgressInt.setIntValue(0);
    prefWrite(pref::encCurrentProcessingFile, cancelMark);
    prefDelete(pref::processEncDico);
    leaveOnlyTheFinish();
}

void BatchMachine::chooseRow()
{
    const QString folder = eventsFolder(destination_.typed());
    if (!destination_.typed().isEmpty() && !isFolder(folder)) {
        mkdirCocoa(folder);
    }
    BatchList& rows = session_.model().encBatchArrayController;
    int index = 0;
    if (!prefRead(pref::encCurrentProcessingFile).isEmpty()) {
        logLine(QStringLiteral("batch, c'est parti : suivantes…"));
        index = currentRowIndex(rows) + 1;
        dropArea_.open();
    }
    if (index >= rows.count()) {
        end();
        return;
    }
    if (rows.row(index).dico.isEmpty() || !testPresenceCocoa(rows.row(index).source())) {
        skipVanishedRow(index);
        return;
    }
    row_.begin(index);
    Q_EMIT rowStarted(index);
    send(stepProcesses);
}

void BatchMachine::skipVanishedRow(int index)
{
    BatchList& rows = session_.model().encBatchArrayController;
    const QString source = rows.row(index).source();
    const Answer answer = session_.ask({alertText("D_batch_2"),
                                        formatText(alertText("D_batch_3"), {rows.row(index).src}),
                                        {QStringLiteral("OK")},
                                        0,
                                        missingSourceAlertSeconds,
                                        {}});
    if (answer.after == After::Ending) {
        return; // the rows went while the alert was open
    }
    if (index > 0) {
        prefWrite(pref::encCurrentProcessingFile, rows.row(index - 1).source());
    }
    batchRows_.removeRow(index);
    Q_EMIT rowVanished(source);
    // A batch that was stopped meanwhile ends like any other one: there is no next row.
    if (answer.after == After::GoOn) {
        row_.vanish();
    }
    send(stepProcesses);
}

void BatchMachine::takeRowStep()
{
    using Next = RowEncode::Next;
    Next next = Next::Wait;
    if (takeFlag(pref::encDeb)) {
        next = row_.prepare();
    } else if (takeFlag(pref::encPart)) {
        next = row_.encodePart();
    } else if (takeFlag(pref::encQtEnc)) {
        next = row_.secondPass();
    } else if (takeFlag(pref::encFin)) {
        next = Next::Finish;
    }
    switch (next) {
    case Next::Wait:
        break;
    case Next::Launch:
        launchPass();
        break;
    case Next::Finish:
        finishRow();
        break;
    case Next::Refused:
        tellRowOver(currentRowIndex(session_.model().encBatchArrayController), false);
        send(stepBatch);
        break;
    case Next::Stop:
        stop();
        send(stepBatch);
        break;
    case Next::NextRow:
        send(stepBatch);
        break;
    }
}

void BatchMachine::launchPass()
{
    const RowEncode::Pass pass = row_.pass();
    if (pass.arguments.isEmpty()) {
        finishRow();
        return;
    }
    progress_.setPass(pass.number, pass.count);
    if (launch(pass.arguments, pass.maximum, pass.parser, pass.environment)) {
        tellStep(0);
    }
}

void BatchMachine::tellStep(double fraction)
{
    Q_EMIT rowStep(currentRowIndex(session_.model().encBatchArrayController), progress_.pass(), progress_.passes(),
                   fraction);
}

bool BatchMachine::launch(const QStringList& arguments, float maximum, int parser,
                          const taskLauncher::Environment& environment)
{
    if (!child_.mayLaunch(arguments)) {
        return false;
    }
    progress_.begin(maximum, parser);
    const auto missing = [this, &arguments] {
        row_.children().missing(arguments.first());
        Q_EMIT childGone(nullptr);
    };
    return child_.launch(arguments, missing, environment);
}

void BatchMachine::finishRow()
{
    prefDelete(pref::encFin);
    progress_.reset();
    const RowEncode::Outcome outcome = row_.finish();
    switch (outcome) {
    case RowEncode::Outcome::Stopped:
        endStopped();
        return;
    case RowEncode::Outcome::Succeeded:
    case RowEncode::Outcome::Failed:
        tellRowOver(currentRowIndex(session_.model().encBatchArrayController),
                    outcome == RowEncode::Outcome::Succeeded);
        break;
    case RowEncode::Outcome::Vanished:
        break;
    }
    send(stepBatch);
}

void BatchMachine::tellRowOver(int row, bool success)
{
    row_.close();
    Q_EMIT rowFinished(row, success);
}

void BatchMachine::end()
{
    WindowModel& model = session_.model();
    logLine(QStringLiteral("enc fini :-)"));
    model.batchEncGoBt.setState(0);
    model.batchEncGoBt.setEnabled(model.encBatchArrayController.count() > 0);
    model.mainEncProgressCaptionStr.setStringValue(QString());
    model.mainEncProgressPercentStr.setStringValue(QString());
    model.encStopBt.setHidden(true);
    model.mainEncProgressInt.setIntValue(0);
    prefDelete(pref::encCurrentProcessingFile);
    prefDelete(pref::replaceFilesCheck);
    tellEnd(false);
}

void BatchMachine::endStopped()
{
    WindowModel& model = session_.model();
    model.batchEncGoBt.setState(0);
    model.batchEncGoBt.setEnabled(model.encBatchArrayController.count() > 0 && dropArea_.isOpen());
    prefDelete(pref::replaceFilesCheck);
    tellEnd(true);
}

void BatchMachine::tellEnd(bool stopped)
{
    session_.sheet(alertText("D_fin_GUI"), tallyText(tallyOf(session_.model().encBatchArrayController)));
    destination_.reveal(&session_.model().mainEncDstRevealBt);
    Q_EMIT batchEnded(stopped);
}

void BatchMachine::stop()
{
    session_.model().mainEncProgressInt.setIntValue(1);
    const QString output = currentValue(record::dstPathStr);
    const int row = currentRowIndex(session_.model().encBatchArrayController);
    // Between two rows the current one is over, and has been told of.
    if (row >= 0 && row_.isOpen()) {
        row_.fail(row, batchText("Enc_stopped"));
        tellRowOver(row, false);
    }
    row_.guard().removePartial(output);
    leaveOnlyTheFinish();
    if (session_.tell(alertText("D_action_stop")) == After::Ending || !child_.isHeld()) {
        return;
    }
    taskLauncher* launcher = child_.launcher();
    launcher->terminate();
    Q_EMIT childGone(launcher);
    // The tool can have made its output while the alert was open.
    row_.guard().removePartial(output);
}

void BatchMachine::childWrote(const QString& text, bool analysing)
{
    child_.heard();
    row_.childWrote(text);
    if (analysing) {
        return;
    }
    if (const std::optional<float> value = progress_.show(text)) {
        Q_EMIT rowProgress(currentRowIndex(session_.model().encBatchArrayController), *value, progress_.maximum());
    }
    if (const std::optional<double> fraction = progress_.fraction(text)) {
        tellStep(*fraction);
    }
}

void BatchMachine::childDone(const taskLauncher* launcher, bool analysing)
{
    // Stop and quit tell the end of a launcher that has told it itself.
    if (!child_.isHeld() || (launcher != nullptr && launcher != child_.launcher())) {
        return;
    }
    endWaits_ = analysing;
    if (analysing) {
        return;
    }
    if (launcher != nullptr) {
        row_.children().ended({launcher->endedBySignal(), launcher->terminationStatus()});
    }
    child_.release();
    progress_.fill();
    send(stepProcesses);
}

void BatchMachine::passTime(qint64 milliseconds)
{
    const qint64 limit = silenceLimit(pref::silenceEncode);
    if (child_.isSilentAfter(milliseconds, limit)) {
        logLine(QStringLiteral("task silent         :-( %d s"), {limit / 1000});
        row_.children().silent(static_cast<int>(limit / 1000));
        child_.kill();
    }
}

void BatchMachine::deliverWaitingEnd()
{
    if (std::exchange(endWaits_, false)) {
        Q_EMIT childGone(child_.launcher());
    }
}

void BatchMachine::abandon()
{
    const QString output = currentValue(record::dstPathStr);
    // Between two children, under an alert, a row has its files too.
    const bool encoding = child_.isHeld() || session_.model().batchEncGoBt.state() == 1;
    if (!encoding) {
        return;
    }
    row_.guard().removePartial(output);
    child_.kill();
    child_.release();
    endWaits_ = false;
    // The tool can have made more of it until it was gone.
    row_.guard().removePartial(output);
    prefWrite(pref::encCurrentProcessingFile, cancelMark);
    prefDelete(pref::processEncDico);
}

} // namespace tavrix
