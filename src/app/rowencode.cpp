// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/rowencode.h"

#include "app/alerttext.h"
#include "app/currentrow.h"
#include "app/logs.h"
#include "app/rowwords.h"
#include "app/session.h"
#include "app/stepflags.h"
#include "app/verdictwords.h"
#include "app/windowmodel.h"
#include "base/bundle/bundle.h"
#include "base/dialogue/shownvalues.h"
#include "base/files/filedelete.h"
#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/store/preferences.h"
#include "base/text/cliptime.h"
#include "base/text/datetext.h"
#include "base/text/format.h"
#include "base/text/paths.h"
#include "base/text/shownname.h"
#include "base/text/text.h"
#include "encode/encoderarguments.h"
#include "encode/movencoderstep.h"
#include "encode/outputformats.h"
#include "encode/outputname.h"
#include "encode/presets.h"
#include "encode/progress.h"
#include "probe/batchtexts.h"
#include "probe/recordersources.h"
#include "probe/recordingname.h"
#include "sys/publication.h"

#include <QDateTime>

namespace tavrix
{

namespace
{

constexpr double smallestOutputKilobytes = 200;

// A batch that was stopped under an alert goes on to the place where that is honoured; one that is no more does not.
RowEncode::Next afterAlert(After after)
{
    switch (after) {
    case After::GoOn:
        return RowEncode::Next::Launch;
    case After::Stopped:
        return RowEncode::Next::NextRow;
    case After::Ending:
        break;
    }
    return RowEncode::Next::Wait;
}

// The tools publish what is all that a damaged source gives; the row says what is missing.
void warn(BatchList& rows, int row, const std::optional<judge::Verdict>& verdict)
{
    if (verdict) {
        rows.setWarning(row, verdictWords(*verdict), verdict->outcome == judge::Outcome::Incomplete);
    }
}

bool bringsPresets()
{
    return ffpresetParserFunction(QStringLiteral("presets"), QStringLiteral("libx264-0.ffpreset")).has_value() &&
           ffpresetParserFunction(QStringLiteral("presets"), QStringLiteral("appleSd.ffpreset")).has_value();
}

// What the tool may replace and, when it is not the name among the arguments, where its output goes.
taskLauncher::Environment terms(const std::optional<FileIdentity>& replaceable, const QString& place = QString())
{
    taskLauncher::Environment environment = {{QString::fromLatin1(publication::replacesVariable),
                                              QString::fromStdString(publication::replacesText(replaceable))}};
    if (!place.isEmpty()) {
        environment.append({QString::fromLatin1(publication::placeVariable), place});
    }
    return environment;
}

} // namespace

RowEncode::RowEncode(Session& session) : session_(session), guard_(rows()), clearance_(session_, guard_) {}

BatchList& RowEncode::rows() const
{
    return session_.model().encBatchArrayController;
}

void RowEncode::begin(int row)
{
    state_ = State::Open;
    rows().setResultat(row, rowIcon::current);
    prefWrite(pref::encCurrentProcessingFile, rows().row(row).source());
    prefWriteDico(pref::processEncDico, convertedRecord(rows().row(row)));
    setFlag(pref::encDeb);
    children_.beginRow();
    guard_.beginRow();
}

void RowEncode::vanish()
{
    state_ = State::Vanished;
    prefDelete(pref::encDeb);
    setFlag(pref::encFin);
}

RowEncode::Next RowEncode::prepare()
{
    const int row = currentRowIndex(rows());
    setFlag(pref::encFin);
    if (row < 0) {
        return Next::Finish;
    }
    const QString destination = session_.model().mainEncDstPathStr.stringValue();
    const QString folder = eventsFolder(destination);
    if (destination.isEmpty() || !isFolder(folder)) {
        return refuse(row, formatText(batchText("Enc_noFolder"), {folder}));
    }
    const BatchRow& current = rows().row(row);
    if (const double whole = current.dico.value(record::w_duration).toDouble();
        current.part && whole > 0 && convertedShare(current) <= 0) {
        return refuse(row, formatText(batchText("Enc_partBehind"), {shownClipTime(whole)}));
    }
    const QString output = outputPath(destination, dateCreation2iMovieName(current.source()), current.out,
                                      textOf(current.dico.value(record::v0_codec)));
    guard_.lookAt(output);
    prefWriteChildDico(pref::processEncDico, record::dstPathStr, output);
    // The second pass reads the format from here; the row's own value is the one in force.
    prefWriteChildDico(pref::processEncDico, record::out, current.out);
    const Next next = clearWay(row, output);
    if (next != Next::Launch) {
        return next;
    }
    return current.part ? partPass(row) : firstPass(row, output);
}

RowEncode::Next RowEncode::clearWay(int row, const QString& output)
{
    const RowClearance::Ruling ruling = clearance_.look(row, output);
    if (ruling.after != After::GoOn) {
        return afterAlert(ruling.after);
    }
    if (ruling.stopsBatch) {
        return Next::Stop;
    }
    if (ruling.keepsOlder) {
        rows().setKept(row, true);
    }
    return ruling.refusal.isNull() ? Next::Launch : refuse(row, ruling.refusal);
}

// A movie of the part alone, from which the row is encoded as from any other clip.
RowEncode::Next RowEncode::partPass(int row)
{
    const BatchRow& current = rows().row(row);
    setFlag(pref::encPart);
    const QStringList arguments = part_.begin(currentValue(record::mainEncSrcPathStr), *current.part);
    constexpr float percents = 100;
    launches({arguments, percents, parseMovencoder, {}, 1, hasSecondPass(current.out) ? 3 : 2});
    session_.model().mainEncProgressCaptionStr.setStringValue(current.src);
    return Next::Launch;
}

RowEncode::Next RowEncode::encodePart()
{
    const int row = currentRowIndex(rows());
    if (row < 0) {
        return Next::Finish;
    }
    const RowVerdict& verdict = children_.verdict();
    if (!verdict.isGood() || !part_.isMade()) {
        fail(row, children_.failureReason(part_.isMade()));
        return Next::Finish;
    }
    if (verdict.verdict()->outcome == judge::Outcome::Incomplete && guard_.isTaken()) {
        fail(row, olderKeptWords(*verdict.verdict()));
        return Next::Finish;
    }
    return firstPass(row, currentValue(record::dstPathStr));
}

RowEncode::Next RowEncode::firstPass(int row, const QString& output)
{
    const int out = rows().row(row).out;
    if (outputFormat(out).needsPresets && !bringsPresets()) {
        // Without them the encode would silently be another one.
        return refuse(row, formatText(batchText("Enc_noPresets"), {toolPath(QStringLiteral("presets"))}));
    }
    const QString source = currentValue(record::mainEncSrcPathStr);
    startedAt_ = QDateTime::currentSecsSinceEpoch();
    logResume(formatText(QStringLiteral("\n----------\n\n"
                                        "source              : %@\n"
                                        "destination         : %@\n"
                                        "format              : %d\n"),
                         {shownText(source), shownText(output), out}));
    const std::optional<ClipPart>& part = rows().row(row).part;
    if (part) {
        logResume(formatText(QStringLiteral("part                : %@\n"), {partText(*part)}));
    }
    if (hasSecondPass(out)) {
        setFlag(pref::encQtEnc);
    }
    const std::optional<QStringList> arguments =
        encodage(part ? PartFile::path() : source, output, part ? QStringLiteral("mov") : currentValue(record::wrapper),
                 currentValue(record::v0_codec), currentNumber(record::v0_fps), out, currentNumber(record::v0_aspect));
    if (!arguments) {
        fail(row, batchText("Enc_noArguments"));
        prefDelete(pref::encQtEnc);
        return Next::Finish;
    }
    // The first of two passes makes the movie that the second one reads: it has no business under the final name.
    const bool two = hasSecondPass(out);
    if (two) {
        prefWriteChildDico(pref::processEncDico, record::purgePathStr1, intermediateName(output));
    }
    launches({*arguments, currentNumber(record::w_duration), parseFfmpeg,
              two ? terms(std::nullopt, intermediateName(output)) : terms(guard_.standing()), part ? 2 : 1,
              (part ? 2 : 1) + (two ? 1 : 0)});
    session_.model().mainEncProgressCaptionStr.setStringValue(lastPathComponent(source));
    return Next::Launch;
}

void RowEncode::launches(Pass pass)
{
    pass_ = std::move(pass);
    children_.beginPass(pass_.arguments.value(0));
}

// Nothing when it has made a movie for the second pass. Half a recording replaces nothing, so that the second pass over
// it would be in vain where something stands.
QString RowEncode::firstPassFailure(const QString& output) const
{
    const bool made = guard_.hasMade(intermediateName(output));
    const RowVerdict& verdict = children_.verdict();
    if (!verdict.isGood() || !made) {
        return failureWords(output, made);
    }
    const bool incomplete = verdict.verdict()->outcome == judge::Outcome::Incomplete;
    return incomplete && guard_.isTaken() ? olderKeptWords(*verdict.verdict()) : QString();
}

// Should the program be killed, its next start clears away the first pass's movie and no other file.
void RowEncode::noteIntermediate(const FileIdentity& file)
{
    prefWriteChildDico(pref::processEncDico, ownFile, QString::fromStdString(publication::replacesText(file)));
}

RowEncode::Next RowEncode::secondPass()
{
    const QString output = currentValue(record::dstPathStr);
    prefWriteChildDico(pref::processEncDico, record::mainEncSrcPathStr, output);
    const float duration = currentNumber(record::w_duration);
    const int row = currentRowIndex(rows());
    if (const QString failure = firstPassFailure(output); !failure.isNull()) {
        fail(row, failure);
        return Next::Finish;
    }
    const std::optional<QStringList> arguments =
        secondPassArguments(output, duration, currentNumber(record::v0_aspect), QString());
    if (!arguments) {
        fail(row, batchText("Enc_noSpace"));
        const After after = session_.tell(alertText("D_go_echec_disque4"), alertText("D_go_echec_disque5"));
        if (after != After::GoOn) {
            return afterAlert(after);
        }
        setFlag(pref::encFin);
        return Next::Finish;
    }
    setFlag(pref::encFin);
    if (const std::optional<FileIdentity> made = OutputGuard::intermediateOf(output)) {
        noteIntermediate(*made);
    }
    prefSynchronize();
    // The bar's range stays the clip's duration, although this tool counts percents.
    const int number = rows().row(row).part ? 3 : 2;
    launches({*arguments, duration, parseMovencoder, terms(guard_.standing()), number, number});
    return Next::Launch;
}

RowEncode::Outcome RowEncode::finish()
{
    const bool vanished = state_ == State::Vanished;
    const QString output = currentValue(record::dstPathStr);
    const float duration = currentNumber(record::w_duration);
    guard_.removeIntermediate(output);
    part_.remove();
    pass_ = {};
    prefDelete(pref::processEncDico);
    if (vanished) {
        state_ = State::None;
        return Outcome::Vanished;
    }
    const int row = currentRowIndex(rows());
    if (row < 0) {
        return Outcome::Stopped;
    }
    // The closing block ends without a line feed, the opening one with one.
    const bool closed = writeClosingBlock(row, duration);
    if (rows().row(row).isCurrent()) {
        judge(row, output);
    }
    const BatchRow& over = rows().row(row);
    const QString lineEnd = closed ? QStringLiteral("\n") : QStringLiteral("");
    if (over.hasFailed()) {
        logResume(formatText(QStringLiteral("%@failure             : %@\n"), {lineEnd, shownText(over.reason)}));
        return Outcome::Failed;
    }
    if (!over.warning.isEmpty()) {
        logResume(formatText(QStringLiteral("%@warning             : %@\n"), {lineEnd, shownText(over.warning)}));
    }
    return Outcome::Succeeded;
}

bool RowEncode::writeClosingBlock(int row, float duration)
{
    if (rows().row(row).hasFailed()) {
        return false;
    }
    const qint64 elapsed = QDateTime::currentSecsSinceEpoch() - startedAt_;
    const double speed = static_cast<double>(duration) / static_cast<double>(elapsed > 0 ? elapsed : 1);
    const QString maker = formatText(QStringLiteral("(made by %@)"), {textOf(infoValue(QStringLiteral("TVXWebSite")))});
    logResume(formatText(QStringLiteral("speed               : real time / %.2f\ndate                : %@\n%@"),
                         {speed, currentDateText(), maker}));
    return true;
}

void RowEncode::judge(int row, const QString& output)
{
    const double kilobytes = poidsFile(output, QStringLiteral("k"));
    const bool made = guard_.hasMade(output);
    if (!children_.verdict().isGood() || !made) {
        fail(row, failureWords(output, made));
        guard_.removePartial(output);
    } else if (kilobytes > -1 && kilobytes < smallestOutputKilobytes) {
        fail(row, batchText("Enc_tooSmall"));
        rmCocoa(output);
    } else {
        rows().setResultat(row, rowIcon::success);
        rows().setOutput(row, output);
        warn(rows(), row, children_.verdict().verdict());
        guard_.keep(output);
        // Libraries sort by the file's date where they know no other one.
        if (const std::optional<qint64> recorded = recordingName(rows().row(row).source()).seconds) {
            setModificationTime(output, *recorded);
        }
    }
}

// A tool knows only that its output could not be named.
QString RowEncode::failureWords(const QString& output, bool made) const
{
    const QString gone = folderGone(output);
    return gone.isNull() ? children_.failureReason(made) : gone;
}

RowEncode::Next RowEncode::refuse(int row, const QString& reason)
{
    fail(row, reason);
    prefDelete(pref::encFin);
    prefDelete(pref::processEncDico);
    return Next::Refused;
}

void RowEncode::fail(int row, const QString& reason)
{
    rows().setResultat(row, rowIcon::failure);
    rows().setReason(row, reason);
}

void RowEncode::childWrote(const QString& text)
{
    children_.wrote(text);
    if (const std::optional<FileIdentity>& file = children_.verdict().output();
        isOpen() && file && guard_.noteOwn(*file) && isFlagSet(pref::encQtEnc)) {
        noteIntermediate(*file);
        prefSynchronize();
    }
}

} // namespace tavrix
