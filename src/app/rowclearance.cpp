// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/rowclearance.h"

#include "app/alerttext.h"
#include "app/batchlist.h"
#include "app/currentrow.h"
#include "app/logs.h"
#include "app/partfile.h"
#include "app/rowwords.h"
#include "app/stepflags.h"
#include "app/windowmodel.h"
#include "base/files/fileinfo.h"
#include "base/store/preferences.h"
#include "base/text/format.h"
#include "base/text/paths.h"
#include "base/text/shownname.h"
#include "base/text/text.h"
#include "encode/encoderarguments.h"
#include "encode/outputformats.h"
#include "encode/rowforecast.h"
#include "probe/batchtexts.h"

namespace tavrix
{

namespace
{

constexpr int replaceAlertSeconds = 60;
constexpr int replaceButton = 0;
constexpr int keepButton = 1;
constexpr int stopButton = 2;

qint64 freeBytes(const QString& output)
{
    return qint64{espaceDiskDispo(stringByDeletingLastPathComponent(output))} * 1024 * 1024;
}

// In units of a million bytes, at least one.
qint64 megabytes(qint64 bytes)
{
    constexpr qint64 million = 1000000;
    return (bytes + million - 1) / million;
}

RowClearance::Ruling refusedFor(const QString& reason)
{
    return {After::GoOn, false, false, reason};
}

} // namespace

RowClearance::RowClearance(Session& session, const OutputGuard& guard) : session_(session), guard_(guard) {}

BatchList& RowClearance::rows() const
{
    return session_.model().encBatchArrayController;
}

RowClearance::Ruling RowClearance::look(int row, const QString& output) const
{
    if (const QString refused = refusal(row, output); !refused.isNull()) {
        logResume(
            formatText(QStringLiteral("\n----------\n\nsource              : %@\nfailure             : %@ (%@)\n"),
                       {shownText(currentValue(record::mainEncSrcPathStr)), refused, shownText(output)}));
        return refusedFor(refused);
    }
    if (guard_.isTaken()) {
        const Answer answer = replaceAnswer(output);
        if (answer.after != After::GoOn || answer.button == stopButton) {
            return {answer.after, answer.after == After::GoOn, false, QString()};
        }
        if (answer.button == keepButton) {
            return {After::GoOn, false, true, batchText("Enc_kept")};
        }
    }
    if (const QString gone = folderGone(output); !gone.isNull()) {
        return refusedFor(gone);
    }
    return roomFor(row, output);
}

RowClearance::Ruling RowClearance::roomFor(int row, const QString& output) const
{
    if (!fitsByRule(row, output)) {
        // The same words twice are no slip: there is nothing else to say.
        return {session_.tell(alertText("D_keep"), alertText("D_keep")), false, false, batchText("Enc_noSpace")};
    }
    // The rule's own estimate knows nothing of rate and content; where it lets pass what cannot fit, this one does not.
    const qint64 room = leastRoom(convertedRecord(rows().row(row)), rows().row(row).out);
    if (const qint64 available = freeBytes(output); room > available) {
        return refusedFor(formatText(batchText("Enc_noRoom"), {megabytes(room), megabytes(available)}));
    }
    return {};
}

// Why the row cannot have its names, whatever a person would answer; nothing when it can.
QString RowClearance::refusal(int row, const QString& output) const
{
    const QString refused = guard_.isTaken() ? guard_.refusal(output) : QString();
    if (refused.isNull() && hasSecondPass(rows().row(row).out)) {
        return guard_.intermediateRefusal(output);
    }
    return refused;
}

// From what was answered for the whole batch, from what the face has chosen beforehand, else from a person.
Answer RowClearance::replaceAnswer(const QString& output) const
{
    const QString stored = prefRead(pref::replaceFilesCheck);
    if (!stored.isEmpty()) {
        return {After::GoOn, leadingInteger(stored) == 1 ? replaceButton : keepButton};
    }
    if (replacePolicy_) {
        return {After::GoOn, *replacePolicy_ == 1 ? replaceButton : keepButton};
    }
    const Answer answer = session_.ask({alertText("D_go_dossier_destination4Bis"),
                                        replaceWords(currentValue(record::mainEncSrcPathStr), output),
                                        {alertText("D_replace"), alertText("D_keep"), alertText("D_stopBatch")},
                                        keepButton,
                                        replaceAlertSeconds,
                                        alertText("D_applyToAll")});
    if (answer.after == After::GoOn && answer.checked && answer.button != stopButton) {
        prefWrite(pref::replaceFilesCheck, answer.button == replaceButton ? 1 : 0);
    }
    return answer;
}

// By the estimate of the output's size, in megabytes.
bool RowClearance::fitsByRule(int row, const QString& output) const
{
    const double sourceSize =
        poidsFile(currentValue(record::mainEncSrcPathStr), QStringLiteral("m")) * convertedShare(rows().row(row));
    const float estimate = encDstPoidsEstimatif(currentNumber(record::w_duration), sourceSize, rows().row(row).out);
    const int available = espaceDiskDispo(stringByDeletingLastPathComponent(output));
    return static_cast<double>(estimate) <= available;
}

} // namespace tavrix
