// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/findings.h"

#include "tools/ffmpeg/errorlines.h"
#include "tools/ffmpeg/progresslines.h"

namespace tavrix::front
{

void Findings::note(const std::string& line, const std::string& shown)
{
    inputDescribed = inputDescribed || line.starts_with("Input #");
    outputDescribed = outputDescribed || line.starts_with("Output #");
    if (const auto option = front::refusedOption(line)) {
        refusedOption = *option;
    }
    foreignFormat = foreignFormat || tellsForeignFormat(line);
    annexBRefused = annexBRefused || refusesAnnexB(line);
    framesCounted = framesCounted || countsFrames(line);
    nothingEncoded = nothingEncoded || tellsNothingEncoded(line);
    summaryEmpty = summaryEmpty || tellsNoContent(line);
    indexMissing = indexMissing || tellsMissingIndex(line);
    undecodable = undecodable || tellsUndecodable(line);
    if (writeFailure.empty() && tellsWriteFailure(line)) {
        writeFailure = shown;
    }
    decodeErrors += tellsDecodeError(line) ? 1 : 0;
}

} // namespace tavrix::front
