#include "app/appdelegate.h"

#include "app/encodefailure.h"
#include "app/stepflags.h"
#include "base/alerts.h"
#include "base/filesizes.h"
#include "base/format.h"
#include "base/localisation.h"
#include "base/log.h"
#include "base/paths.h"
#include "base/preferences.h"
#include "base/text.h"
#include "encode/outputname.h"
#include "encode/progress.h"
#include "probe/batchtexts.h"

#include <QDateTime>

// The batch: picks row after row, launches its child, and reacts to the start, pause and stop controls.
namespace tavrix
{

namespace
{

constexpr int missingSourceAlertSeconds = 10;

QString alertText(const char* key)
{
    return localizedString(QLatin1String(key));
}

// A folder can be typed with a tilde.
bool isTypedFolder(const QString& text)
{
    return isFolder(stringByExpandingTildeInPath(text));
}

} // namespace

QStringList appDelegate::encArray()
{
    return {stepBatch, pref::encDeb, pref::encQtEnc, pref::encFin};
}

int appDelegate::encBatchInprogressRowIdentification() const
{
    const QString current = prefRead(pref::encCurrentProcessingFile);
    // A row may be named like the mark of a stop; it must not be taken for the current one.
    if (current.isEmpty() || current == cancelMark) {
        return -1;
    }
    return model_.encBatchArrayController.indexOfSource(current);
}

void appDelegate::iba_batchEncGoBt()
{
    if (model_.encBatchArrayController.count() == 0) {
        return;
    }
    TextField& field = model_.mainEncDstPathStr;
    const QString preferred = prefRead(pref::prefDefautDstPathStr);
    const bool preferredExists = isTypedFolder(preferred);
    if (field.stringValue().isEmpty()) {
        displayAlert(alertText("D_go_dossier_destination1"), alertText("D_go_dossier_destination3"), 0, nullptr);
        iba_selectFolderBt(&model_.mainEncDstSelectBt);
    } else if (!isTypedFolder(field.stringValue()) && preferredExists) {
        field.setStringValue(preferred);
    } else if (!isTypedFolder(field.stringValue())) {
        displayAlert(alertText("D_go_dossier_destination2"), alertText("D_go_dossier_destination3"), 0, nullptr);
        field.setStringValue(QString());
        iba_selectFolderBt(&model_.mainEncDstSelectBt);
        const QString chosen = prefRead(pref::prefDefautDstPathStr);
        if (field.stringValue().isEmpty() && isTypedFolder(chosen)) {
            field.setStringValue(chosen);
        }
    }
    if (field.stringValue().isEmpty()) {
        return;
    }
    model_.batchEncGoBt.setEnabled(false);
    model_.batchEncGoBt.setState(1);
    BatchList& rows = model_.encBatchArrayController;
    for (int i = 0; i < rows.count(); ++i) {
        rows.setResultat(i, rowIcon::pending);
        rows.setReason(i, QString());
        rows.setOutput(i, QString());
    }
    encBatchOutputs_.clear();
    encSend(stepBatch);
}

// Steps are queued and run in a loop: a chain of failing rows must not grow the stack.
void appDelegate::encSend(const QString& stepName)
{
    encSteps_ << stepName;
    if (encStepsRunning_) {
        return;
    }
    encStepsRunning_ = true;
    while (!encSteps_.isEmpty()) {
        const QString step = encSteps_.takeFirst();
        logLine(QStringLiteral("stepNameStr : %@"), {step});
        enc(step);
    }
    encStepsRunning_ = false;
}

void appDelegate::enc(const QString& stepName)
{
    if (quitting_) {
        return;
    }
    const bool stopped = model_.mainEncProgressInt.intValue() != 0;
    if (stopped) {
        encHonourStop();
    }
    // A stop always ends in the finish step, also when the next row was asked for.
    if (stepName == stepBatch && !stopped) {
        encBatchStep();
    } else {
        encProcessesStep();
    }
}

void appDelegate::encHonourStop()
{
    logLine(QStringLiteral("enc stop = 1"));
    model_.mainEncProgressInt.setIntValue(0);
    prefWrite(pref::encCurrentProcessingFile, cancelMark);
    prefDelete(pref::processEncDico);
    const QStringList flags = encArray();
    for (qsizetype i = 1; i < flags.size() - 1; ++i) {
        prefDelete(flags.at(i));
    }
    setFlag(flags.last());
}

void appDelegate::encBatchStep()
{
    if (!model_.mainEncDstPathStr.stringValue().isEmpty() &&
        !isFolder(eventsFolder(model_.mainEncDstPathStr.stringValue()))) {
        makeEventsFolder();
    }
    BatchList& rows = model_.encBatchArrayController;
    int index = 0;
    if (!prefRead(pref::encCurrentProcessingFile).isEmpty()) {
        logLine(QStringLiteral("batch, c'est parti : suivantes…"));
        index = encBatchInprogressRowIdentification() + 1;
        resetDropArea();
    }
    if (index >= rows.count()) {
        encBatchOver();
        return;
    }
    const QString source = rows.row(index).dico.value(record::mainEncSrcPathStr).toString();
    if (rows.row(index).dico.isEmpty() || !testPresenceCocoa(source)) {
        encRowVanished(index);
        return;
    }
    encBeginRow(index);
}

void appDelegate::encBeginRow(int index)
{
    BatchList& rows = model_.encBatchArrayController;
    rows.setResultat(index, rowIcon::current);
    prefWrite(pref::encCurrentProcessingFile, rows.row(index).dico.value(record::mainEncSrcPathStr));
    prefWriteDico(pref::processEncDico, rows.row(index).dico);
    setFlag(pref::encDeb);
    encTranscriptTail_ = QString();
    encPreviousOutput_.reset();
    Q_EMIT rowStarted(index);
    encSend(stepProcesses);
}

void appDelegate::encRowVanished(int index)
{
    BatchList& rows = model_.encBatchArrayController;
    const QString source = rows.row(index).dico.value(record::mainEncSrcPathStr).toString();
    displayAlertDelayed(alertText("D_batch_2"), formatText(alertText("D_batch_3"), {rows.row(index).src}),
                        QStringLiteral("OK"), QString(), QString(), 0, missingSourceAlertSeconds);
    if (quitting_) {
        return; // the rows went while the alert was open
    }
    if (index > 0) {
        prefWrite(pref::encCurrentProcessingFile, rows.row(index - 1).dico.value(record::mainEncSrcPathStr).toString());
    }
    rows.setSelectedRow(index);
    encBatchRemove(nullptr);
    Q_EMIT rowVanished(source);
    prefDelete(pref::encDeb);
    setFlag(pref::encFin);
    encRowWasVanished_ = true;
    encSend(stepProcesses);
}

void appDelegate::encBatchOver()
{
    logLine(QStringLiteral("enc fini :-)"));
    model_.batchEncGoBt.setState(0);
    model_.batchEncGoBt.setEnabled(model_.encBatchArrayController.count() > 0);
    model_.mainEncProgressCaptionStr.setStringValue(QString());
    model_.mainEncProgressPercentStr.setStringValue(QString());
    model_.encStopBt.setHidden(true);
    model_.mainEncProgressInt.setIntValue(0);
    prefDelete(pref::encCurrentProcessingFile);
    prefDelete(pref::replaceFilesCheck);
    displayAlertSheet(alertText("D_fin_GUI"), QString(), face_->window());
    iba_OpenFolder(&model_.mainEncDstRevealBt);
    Q_EMIT batchEnded(false);
}

void appDelegate::encStoppedEnd()
{
    displayAlertSheet(alertText("D_fin_GUI"), QString(), face_->window());
    iba_OpenFolder(&model_.mainEncDstRevealBt);
    Q_EMIT batchEnded(true);
}

void appDelegate::encProcessesStep()
{
    EncodeAction action = EncodeAction::Idle;
    if (takeFlag(pref::encDeb)) {
        action = encDebStep();
    } else if (takeFlag(pref::encQtEnc)) {
        action = encQtEncStep();
    } else if (takeFlag(pref::encFin)) {
        action = EncodeAction::Finish;
    }
    if (action == EncodeAction::Launch) {
        encLaunch();
    } else if (action == EncodeAction::Finish) {
        prefDelete(pref::encFin);
        encFinStep();
    } else if (action == EncodeAction::NextRow) {
        encSend(stepBatch);
    }
}

void appDelegate::encLaunch()
{
    const EncodeLaunch launch = encArgsVArray_.value_or(EncodeLaunch{});
    if (launch.arguments.isEmpty()) {
        prefDelete(pref::encFin);
        encFinStep();
        return;
    }
    taskLauncherEncStart_progressMaxValueFloat_parseInt(launch.arguments, launch.maximum, launch.parser);
}

bool appDelegate::taskLauncherEncStart_progressMaxValueFloat_parseInt(const QStringList& arguments, float maximum,
                                                                      int parser)
{
    if (arguments.isEmpty() || quitting_) {
        return false;
    }
    if (encTaskClass_ != nullptr) {
        logLine(QStringLiteral("forget to release previous task?"));
    }
    SegmentedControl& control = model_.encStopBt;
    if (control.imageName(encStopSegmentPause) == controlImage::play) {
        control.setImageName(encStopSegmentPause, controlImage::pause);
    }
    control.setHidden(false);
    control.setEnabled(true);
    model_.mainEncProgressPercentStr.setStringValue(QString());
    encTaskProgressMaxValue_ = maximum;
    encTaskParseInt_ = parser;
    if (maximum > 0) {
        model_.encTaskProgress.setIndeterminate(false);
        model_.encTaskProgress.setRange(0, static_cast<double>(maximum));
        model_.encTaskProgress.setDoubleValue(0);
        encTaskPreviousTime_ = 0;
    }
    encTaskClass_.reset(newLauncher());
    const int result = encTaskClass_->launchTasksWithArguments(arguments);
    if (result == 0) {
        return true;
    }
    encTranscriptTail_ = formatText(batchText("Enc_toolMissing"), {arguments.first()});
    taskLauncherDone(nullptr);
    face_->beep();
    logLine(QStringLiteral("Erreur au lancement = %d"), {result});
    return false;
}

void appDelegate::deselectSelectedSeg(SegmentedControl* control)
{
    control->setSelectedSegment(-1);
}

void appDelegate::iba_encStopBt(SegmentedControl* control)
{
    const int segment = control->selectedSegment();
    deselectSelectedSeg(control);
    const QString image = control->imageName(segment);
    if (image == controlImage::pause) {
        logLine(QStringLiteral("process             : pause"));
        control->setImageName(segment, controlImage::play);
        if (encTaskClass_) {
            encTaskClass_->suspend();
        }
    } else if (image == controlImage::play) {
        logLine(QStringLiteral("process             : play"));
        control->setImageName(segment, controlImage::pause);
        if (encTaskClass_) {
            encTaskClass_->resume();
        }
    } else if (image == controlImage::stop) {
        logLine(QStringLiteral("process             : stop"));
        encStopPressed();
    }
}

void appDelegate::encStopPressed()
{
    model_.mainEncProgressInt.setIntValue(1);
    const QString destination = prefReadChildDico(pref::processEncDico, record::dstPathStr);
    const int row = encBatchInprogressRowIdentification();
    encFailRow(row, batchText("Enc_stopped"));
    if (row >= 0) {
        Q_EMIT rowFinished(row, false);
    }
    removePartialOutput(destination);
    prefDelete(pref::encDeb);
    prefDelete(pref::encQtEnc);
    setFlag(pref::encFin);
    displayAlert(alertText("D_action_stop"), QString(), 0, nullptr);
    if (taskLauncher* launcher = encTaskClass_.get()) {
        launcher->terminate();
        taskLauncherDone(launcher);
        // The tool can have made its output while the alert was open.
        removePartialOutput(destination);
    }
}

} // namespace tavrix
