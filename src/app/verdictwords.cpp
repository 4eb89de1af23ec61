// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/verdictwords.h"

#include "base/dialogue/plurals.h"
#include "base/dialogue/shownvalues.h"
#include "base/text/format.h"
#include "probe/batchtexts.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>

namespace tavrix
{

namespace
{

using judge::Cause;
using judge::Finding;

// What the text of a cause is filled with.
enum class Fill { Nothing, Seconds, Count, CountOfCount, Text };

struct Words {
    Cause cause;
    const char* key;
    Fill fill;
};

constexpr std::array<Words, 25> table = {{
    {Cause::EndedEarly, "Row_endedEarly", Fill::Seconds},
    {Cause::SoundEndedEarly, "Row_soundEndedEarly", Fill::Seconds},
    {Cause::CutOff, "Row_cutOff", Fill::Nothing},
    {Cause::DamagedPictures, "Row_damagedPictures", Fill::Count},
    {Cause::DamagedSound, "Row_damagedSound", Fill::Count},
    {Cause::LostPackets, "Row_lostPackets", Fill::Count},
    {Cause::ReadError, "Row_readError", Fill::Text},
    {Cause::NotReadable, "Row_notReadable", Fill::Text},
    {Cause::NoPicture, "Row_noPicture", Fill::Nothing},
    {Cause::NoSound, "Row_noSound", Fill::Nothing},
    {Cause::ShorterPicture, "Row_shorterPicture", Fill::Seconds},
    {Cause::ShorterSound, "Row_shorterSound", Fill::Seconds},
    {Cause::LongerPicture, "Row_longerPicture", Fill::Seconds},
    {Cause::PictureCount, "Row_pictureCount", Fill::CountOfCount},
    {Cause::BrokenPackets, "Row_brokenPackets", Fill::Count},
    {Cause::EndsNotDecodable, "Row_endsNotDecodable", Fill::Nothing},
    {Cause::NothingDecodable, "Row_nothingDecodable", Fill::Nothing},
    {Cause::NothingReadable, "Row_nothingReadable", Fill::Nothing},
    {Cause::PicturesElsewhere, "Row_picturesElsewhere", Fill::Nothing},
    {Cause::Encrypted, "Row_encrypted", Fill::Nothing},
    {Cause::OlderKept, "Row_olderKept", Fill::Nothing},
    {Cause::NotJudged, "Row_notJudged", Fill::Text},
    {Cause::NameTaken, "Row_nameTaken", Fill::Nothing},
    {Cause::NotPublished, "Row_notPublished", Fill::Text},
    {Cause::HiddenShown, "Row_hiddenShown", Fill::Count},
}};

QString filled(const Words& words, const Finding& finding)
{
    const QString text = words.fill == Fill::CountOfCount
                             ? countedText(words.key, finding.count, QStringLiteral("Batch"))
                             : batchText(words.key);
    switch (words.fill) {
    case Fill::Nothing:
        return text;
    case Fill::Seconds:
        return formatText(text, {shownDecimal(finding.seconds, 1), shownDecimal(finding.ofSeconds, 1)});
    case Fill::Count:
        return formatText(text, {qint64(finding.count)});
    case Fill::CountOfCount:
        return formatText(text, {qint64(finding.count), qint64(finding.ofCount)});
    case Fill::Text:
        return formatText(text, {QString::fromStdString(finding.text)});
    }
    return text;
}

// "0:04.2": minutes and seconds into the clip.
QString clockWords(double seconds)
{
    const long long tenths = std::llround(std::max(0.0, seconds) * 10);
    const QString rest = shownDecimal(static_cast<double>(tenths % 600) / 10, 1);
    return formatText(QStringLiteral("%lld:%@%@"),
                      {qint64(tenths / 600), QString(tenths % 600 < 100 ? 1 : 0, u'0'), rest});
}

QString findingWords(const Finding& finding)
{
    if (finding.cause == Cause::TooSmall) {
        return batchText("Enc_tooSmall");
    }
    for (const Words& words : table) {
        if (words.cause != finding.cause) {
            continue;
        }
        const QString text = filled(words, finding);
        if (!finding.from) {
            return text;
        }
        return formatText(batchText("Row_from"), {text, clockWords(*finding.from)});
    }
    return QString::fromStdString(judge::englishText(finding));
}

} // namespace

QString verdictWords(const judge::Verdict& verdict)
{
    QStringList findings;
    for (const Finding& finding : verdict.findings) {
        findings << findingWords(finding);
    }
    const QString words = findings.join(QStringLiteral("; "));
    if (verdict.outcome == judge::Outcome::Incomplete) {
        return formatText(batchText("Row_incomplete"), {words});
    }
    return words;
}

} // namespace tavrix
