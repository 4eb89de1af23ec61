// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/dialect.h"

#include <array>
#include <cstdlib>

namespace tavrix::front
{

namespace
{

// 0 for a build from the development branch: it has a name such as "N-123" instead of a number, and is a recent one.
int majorVersion(const Findings& findings)
{
    return std::atoi(findings.version.c_str());
}

bool refusesFrameSpacing(const ToldByStart& told)
{
    const int major = majorVersion(told.findings);
    return told.findings.refusedOption == "vsync" && (major == 0 || major >= 5);
}

// A second start would miss what the first has taken out of a pipe.
bool refusesAnnexBFilter(const ToldByStart& told)
{
    return told.findings.annexBRefused && told.inputCanBeReadAgain;
}

bool forgetsMirror(const ToldByStart& told)
{
    const media::StreamFacts* const picture = told.source ? told.source->facts.chosen(media::Kind::Picture) : nullptr;
    const int major = majorVersion(told.findings);
    return major > 0 && major < 5 && picture != nullptr && picture->turning.mirrored;
}

struct Refusal {
    bool (*isTold)(const ToldByStart& told);
    bool InstalledDialect::*part;
    bool value; // of that part, where the refusal is told
};

constexpr std::array refusals = {
    Refusal{refusesFrameSpacing, &InstalledDialect::frameRateMode, true},
    Refusal{refusesAnnexBFilter, &InstalledDialect::annexBFilter, false},
    // No words refuse this: the version alone tells that the picture would come out mirrored.
    Refusal{forgetsMirror, &InstalledDialect::mirrors, false},
};

} // namespace

InstalledDialect dialectAfter(const ToldByStart& told)
{
    InstalledDialect dialect;
    for (const Refusal& refusal : refusals) {
        if (refusal.isTold(told)) {
            dialect.*refusal.part = refusal.value;
        }
    }
    return dialect;
}

} // namespace tavrix::front
