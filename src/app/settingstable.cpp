// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/settingstable.h"

#include "app/stepflags.h"
#include "base/store/preferences.h"
#include "base/text/text.h"
#include "encode/outputformats.h"

#include <algorithm>
#include <vector>

namespace tavrix
{

namespace
{

constexpr int silentAnalysisSeconds = 60;
constexpr int silentEncodeSeconds = 600;

const StoredRow* rowOf(const QString& key)
{
    const std::span<const StoredRow> rows = storedRows();
    const auto found = std::ranges::find(rows, key, &StoredRow::key);
    return found == rows.end() ? nullptr : &*found;
}

} // namespace

std::span<const StoredRow> storedRows()
{
    using enum StoredKind;
    using enum StoredType;
    static const std::vector<StoredRow> rows = {
        // the user's settings
        {pref::prefCheckMatrix, Setting, Number, defaultOutputFormat},
        {pref::prefDefautDstPathStr, Setting, Path, {}},
        {pref::prefColor, Setting, Number, 0},
        {pref::silenceAnalysis, Setting, Seconds, silentAnalysisSeconds},
        {pref::silenceEncode, Setting, Seconds, silentEncodeSeconds},
        // clips that wait to be read, and the one that is being read
        {pref::analysisSrcPathesDico, Queue, Dictionary, {}},
        {pref::analysisSrcPathStr, Queue, Path, {}},
        // clips of the list that are not converted
        {pref::batchMemory, Queue, Dictionary, {}},
        // the steps of that clip, and what they found
        {pref::analysisDeb, Working, Number, 0},
        {pref::analysisFfmpeg, Working, Number, 0},
        {pref::analysisFfmpegParse, Working, Number, 0},
        {pref::analysisFin, Working, Number, 0},
        {pref::analysisIStr, Working, Text, {}},
        {pref::imgPathStr, Working, Path, {}},
        // the row that is being encoded, its steps, and the answer that holds for the batch
        {pref::encCurrentProcessingFile, Working, Path, {}},
        {pref::processEncDico, Working, Dictionary, {}},
        {pref::encDeb, Working, Number, 0},
        {pref::encPart, Working, Number, 0},
        {pref::encQtEnc, Working, Number, 0},
        {pref::encFin, Working, Number, 0},
        {pref::replaceFilesCheck, Working, Number, {}},
    };
    return rows;
}

bool isKeptAtStart(const QString& key)
{
    const StoredRow* row = rowOf(key);
    return (row != nullptr && row->kind != StoredKind::Working) || key.startsWith(QLatin1String("NSNav"));
}

int storedNumber(const QString& key)
{
    const StoredRow* row = rowOf(key);
    if (row == nullptr) {
        return 0;
    }
    const QString text = prefRead(key);
    const int number = leadingInteger(text);
    const bool possible = row->type == StoredType::Seconds ? number > 0 : !text.isEmpty();
    return possible ? number : row->byDefault.toInt();
}

} // namespace tavrix
