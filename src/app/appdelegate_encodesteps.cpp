#include "app/appdelegate.h"

#include "app/encodefailure.h"
#include "app/logs.h"
#include "app/stepflags.h"
#include "base/alerts.h"
#include "base/bundle.h"
#include "base/conversions.h"
#include "base/filedelete.h"
#include "base/fileops.h"
#include "base/filesizes.h"
#include "base/format.h"
#include "base/localisation.h"
#include "base/log.h"
#include "base/paths.h"
#include "base/preferences.h"
#include "base/settings.h"
#include "base/text.h"
#include "encode/encoderarguments.h"
#include "encode/movencoderstep.h"
#include "encode/outputname.h"
#include "encode/progress.h"
#include "probe/batchtexts.h"
#include "probe/recordersources.h"

#include <QDateTime>
#include <QFileInfo>

#include <sys/stat.h>

#include <algorithm>

// The steps of one row: prepare and launch, the second pass, the finish and its judgement.
namespace tavrix
{

namespace
{

constexpr int replaceAlertSeconds = 60;
constexpr double smallestOutputKilobytes = 200;

QString currentChild(const QString& key)
{
    return prefReadChildDico(pref::processEncDico, key);
}

float currentFloat(const QString& key)
{
    return static_cast<float>(floatPrefix(currentChild(key)));
}

qint64 secondsSince1970()
{
    return QDateTime::currentSecsSinceEpoch();
}

} // namespace

std::optional<appDelegate::FileStamp> appDelegate::stampOf(const QString& path)
{
    struct stat info = {};
    if (path.isEmpty() || ::lstat(nativePath(path).constData(), &info) != 0) {
        return std::nullopt;
    }
    return FileStamp{info.st_dev, info.st_ino, info.st_size, info.st_mtim.tv_sec * 1000000000LL + info.st_mtim.tv_nsec};
}

void appDelegate::makeEventsFolder()
{
    mkdirCocoa(eventsFolder(model_.mainEncDstPathStr.stringValue()));
}

QString appDelegate::encDestination(int row) const
{
    const BatchRow& current = model_.encBatchArrayController.row(row);
    const QString source = current.dico.value(record::mainEncSrcPathStr).toString();
    return outputPath(model_.mainEncDstPathStr.stringValue(), dateCreation2iMovieName(source), current.out,
                      textOf(current.dico.value(record::v0_codec)));
}

bool appDelegate::isOneOfTheSources(const QString& path) const
{
    const BatchList& rows = model_.encBatchArrayController;
    for (int i = 0; i < rows.count(); ++i) {
        if (isSameFile(path, rows.row(i).dico.value(record::mainEncSrcPathStr).toString())) {
            return true;
        }
    }
    return false;
}

// One file can have several names: the destination may have been changed to a link to it, or take capitals for small.
bool appDelegate::isOutputOfThisBatch(const QString& path) const
{
    return std::any_of(encBatchOutputs_.cbegin(), encBatchOutputs_.cend(),
                       [&path](const QString& output) { return output == path || isSameFile(output, path); });
}

appDelegate::EncodeAction appDelegate::encRefuseRow(int row, const QString& reason)
{
    encFailRow(row, reason);
    prefDelete(pref::encFin);
    prefDelete(pref::processEncDico);
    Q_EMIT rowFinished(row, false);
    return EncodeAction::NextRow;
}

// While an alert is open the batch can be stopped, or the program quit and the rows be gone.
bool appDelegate::encEndedMeanwhile() const
{
    return quitting_ || model_.mainEncProgressInt.intValue() != 0;
}

void appDelegate::encFailRow(int row, const QString& reason)
{
    model_.encBatchArrayController.setResultat(row, rowIcon::failure);
    model_.encBatchArrayController.setReason(row, reason);
}

appDelegate::EncodeAction appDelegate::encDebStep()
{
    const int row = encBatchInprogressRowIdentification();
    setFlag(pref::encFin);
    if (row < 0) {
        return EncodeAction::Finish;
    }
    BatchList& rows = model_.encBatchArrayController;
    const int out = rows.row(row).out;
    const QString folder = eventsFolder(model_.mainEncDstPathStr.stringValue());
    if (model_.mainEncDstPathStr.stringValue().isEmpty() || !isFolder(folder)) {
        return encRefuseRow(row, formatText(batchText("Enc_noFolder"), {folder}));
    }
    const QString destination = encDestination(row);
    // Known before the name is stored: a stop deletes what is stored unless it stood there before.
    encPreviousOutput_ = stampOf(destination);
    prefWriteChildDico(pref::processEncDico, record::dstPathStr, destination);
    // The second pass reads the format from here; the row's own value is the one in force.
    prefWriteChildDico(pref::processEncDico, record::out, out);
    const QString refusal = encReplaceRefusal(destination);
    if (encEndedMeanwhile()) {
        return EncodeAction::NextRow;
    }
    if (!refusal.isNull()) {
        return encRefuseRow(row, refusal);
    }
    if (!encHasSpace(row, destination)) {
        displayAlert(localizedString(QStringLiteral("D_keep")), localizedString(QStringLiteral("D_keep")), 0, nullptr);
        return encEndedMeanwhile() ? EncodeAction::NextRow : encRefuseRow(row, batchText("Enc_noSpace"));
    }
    encStartInt_ = secondsSince1970();
    encStartVideoInt_ = encStartInt_;
    const QString source = currentChild(record::mainEncSrcPathStr);
    logResume(
        formatText(QStringLiteral("\n----------\n\nsource              : %@\ndestination         : %@\nformat       "
                                  "       : %d\n"),
                   {source, destination, out}));
    if ((out == 4 && getAIC() != 0) || (out == 5 && getPRORES() != 0)) {
        setFlag(pref::encQtEnc);
    }
    const std::optional<QStringList> arguments =
        encodage(source, destination, currentChild(record::wrapper), currentChild(record::v0_codec),
                 currentFloat(record::v0_fps), out, currentFloat(record::v0_aspect));
    if (!arguments) {
        encFailRow(row, batchText("Enc_noArguments"));
        prefDelete(pref::encQtEnc);
        return EncodeAction::Finish;
    }
    encArgsVArray_ = EncodeLaunch{*arguments, currentFloat(record::w_duration), parseFfmpeg};
    model_.mainEncProgressCaptionStr.setStringValue(lastPathComponent(source));
    return EncodeAction::Launch;
}

// Why an existing output must stay; nothing when the way is free.
QString appDelegate::encReplaceRefusal(const QString& destination)
{
    if (!stampOf(destination)) {
        return {};
    }
    if (isOneOfTheSources(destination)) {
        return encLoggedRefusal(batchText("Enc_outputIsSource"), destination);
    }
    // Two clips can get one output name; a stored answer or a time-out must not let the second destroy the first.
    if (isOutputOfThisBatch(destination)) {
        return encLoggedRefusal(batchText("Enc_outputOfThisBatch"), destination);
    }
    const QString kept = batchText("Enc_kept");
    // A pipe would be written into instead of replaced, and block for ever.
    if (!QFileInfo(destination).isFile()) {
        return encLoggedRefusal(kept, destination);
    }
    const QString stored = prefRead(pref::replaceFilesCheck);
    if (!stored.isEmpty()) {
        return leadingInteger(stored) == 1 ? QString() : kept;
    }
    if (replacePolicy_) {
        return *replacePolicy_ == 1 ? QString() : kept;
    }
    const QString keep = localizedString(QStringLiteral("D_keep"));
    const CheckBoxAnswer answer = displayAlertDelayedCheckbox(
        lastPathComponent(destination), localizedString(QStringLiteral("D_go_dossier_destination4Bis")),
        localizedString(QStringLiteral("D_replace")), keep, QString(), 0, replaceAlertSeconds,
        localizedString(QStringLiteral("D_applyToAll")));
    const bool replace = answer.button != keep;
    if (answer.checked == 1) {
        prefWrite(pref::replaceFilesCheck, replace ? 1 : 0);
    }
    return replace ? QString() : kept;
}

QString appDelegate::encLoggedRefusal(const QString& reason, const QString& destination)
{
    logResume(formatText(QStringLiteral("\n----------\n\nsource              : %@\nfailure             : %@ (%@)\n"),
                         {currentChild(record::mainEncSrcPathStr), reason, destination}));
    return reason;
}

bool appDelegate::encHasSpace(int row, const QString& destination)
{
    const double sourceSize = poidsFile(currentChild(record::mainEncSrcPathStr), QStringLiteral("m"));
    const float estimate =
        encDstPoidsEstimatif(currentFloat(record::w_duration), sourceSize, model_.encBatchArrayController.row(row).out);
    const int available = espaceDiskDispo(stringByDeletingLastPathComponent(destination));
    return static_cast<double>(estimate) <= available;
}

appDelegate::EncodeAction appDelegate::encQtEncStep()
{
    const QString destination = currentChild(record::dstPathStr);
    prefWriteChildDico(pref::processEncDico, record::mainEncSrcPathStr, destination);
    const float duration = currentFloat(record::w_duration);
    const int row = encBatchInprogressRowIdentification();
    // What stood there before is no result of the first pass: it must neither be moved aside nor encoded.
    if (!testPresenceCocoa(destination) || stampOf(destination) == encPreviousOutput_) {
        encFailRow(row, encFailureReason());
        return EncodeAction::Finish;
    }
    const std::optional<QStringList> arguments =
        encPostQtEnc(destination, duration, currentFloat(record::v0_aspect), QString());
    if (!arguments) {
        encFailRow(row, batchText("Enc_noSpace"));
        displayAlert(localizedString(QStringLiteral("D_go_echec_disque4")),
                     localizedString(QStringLiteral("D_go_echec_disque5")), 0, nullptr);
        setFlag(pref::encFin);
        return encEndedMeanwhile() ? EncodeAction::NextRow : EncodeAction::Finish;
    }
    setFlag(pref::encFin);
    prefSynchronize();
    encArgsVArray_ = EncodeLaunch{*arguments, duration, parseMovencoder};
    return EncodeAction::Launch;
}

QString appDelegate::encFailureReason() const
{
    const QString line = failureLine(encTranscriptTail_);
    return line.isNull() ? batchText("Enc_noOutput") : line;
}

void appDelegate::encResetDisplay()
{
    model_.encTaskProgress.setDoubleValue(0);
    model_.encTaskProgress.stopAnimation();
    model_.mainEncProgressPercentStr.setStringValue(QString());
    encTaskProgressMaxValue_ = 0;
    encTaskPreviousTime_ = 0;
    encArgsVArray_.reset();
    model_.mainEncProgressCaptionStr.setStringValue(QString());
    model_.encStopBt.setHidden(true);
}

void appDelegate::encFinStep()
{
    const bool begun = prefReadDico(pref::processEncDico).has_value();
    const bool vanished = encRowWasVanished_;
    encRowWasVanished_ = false;
    const QString destination = currentChild(record::dstPathStr);
    const float duration = currentFloat(record::w_duration);
    removeIntermediate(destination);
    encResetDisplay();
    prefDelete(pref::processEncDico);
    if (vanished) {
        encSend(stepBatch);
        return;
    }
    const int row = encBatchInprogressRowIdentification();
    if (row < 0) {
        model_.batchEncGoBt.setState(0);
        model_.batchEncGoBt.setEnabled(model_.encBatchArrayController.count() > 0 && getOPENPERM() == 1);
        prefDelete(pref::replaceFilesCheck);
        encStoppedEnd();
        return;
    }
    // The closing block ends without a line feed, the opening one with one.
    const bool closed = begun && encWriteClosingBlock(row, duration);
    if (model_.encBatchArrayController.row(row).resultat == rowIcon::current) {
        encJudgeRow(row, destination);
    }
    const BatchRow& finished = model_.encBatchArrayController.row(row);
    if (begun && finished.resultat == rowIcon::failure) {
        logResume(formatText(QStringLiteral("%@failure             : %@\n"),
                             {closed ? QStringLiteral("\n") : QStringLiteral(""), finished.reason}));
    }
    Q_EMIT rowFinished(row, finished.resultat == rowIcon::success);
    encSend(stepBatch);
}

bool appDelegate::encWriteClosingBlock(int row, float duration)
{
    if (model_.encBatchArrayController.row(row).resultat == rowIcon::failure) {
        return false;
    }
    const qint64 elapsed = secondsSince1970() - encStartInt_;
    const double speed = static_cast<double>(duration) / static_cast<double>(elapsed > 0 ? elapsed : 1);
    const QString maker = formatText(QStringLiteral("(made by %@)"), {textOf(infoValue(QStringLiteral("TVXWebSite")))});
    logResume(formatText(QStringLiteral("speed               : real time / %.2f\ndate                : %@\n%@"),
                         {speed, currentDateText(), maker}));
    return true;
}

void appDelegate::encJudgeRow(int row, const QString& destination)
{
    const double kilobytes = poidsFile(destination, QStringLiteral("k"));
    const std::optional<FileStamp> stamp = stampOf(destination);
    const bool untouched = stamp && stamp == encPreviousOutput_;
    if (destination.isEmpty() || !stamp || untouched) {
        encFailRow(row, encFailureReason());
    } else if (kilobytes > -1 && kilobytes < smallestOutputKilobytes) {
        encFailRow(row, batchText("Enc_tooSmall"));
        rmCocoa(destination);
    } else {
        BatchList& rows = model_.encBatchArrayController;
        rows.setResultat(row, rowIcon::success);
        rows.setOutput(row, destination);
        encBatchOutputs_.insert(destination);
    }
}

void appDelegate::removeIntermediate(const QString& destination)
{
    const QString folder = stringByDeletingLastPathComponent(destination);
    if (destination.isEmpty() || lastPathComponent(folder) != eventsFolderName) {
        return;
    }
    const QString intermediate = intermediateName(destination);
    // A short master name can be the output's own name: only a file made by the second pass is an intermediate.
    if (intermediate != destination && !isOneOfTheSources(intermediate)) {
        removeOwnFile(intermediate, folder);
    }
}

void appDelegate::removePartialOutput(const QString& destination)
{
    const QString folder = stringByDeletingLastPathComponent(destination);
    if (destination.isEmpty() || lastPathComponent(folder) != eventsFolderName) {
        return;
    }
    const std::optional<FileStamp> stamp = stampOf(destination);
    // What stood there before this row is no partial output of it.
    if (stamp && stamp != encPreviousOutput_ && !isOneOfTheSources(destination)) {
        rmCocoa(destination);
    }
    removeIntermediate(destination);
}

} // namespace tavrix
