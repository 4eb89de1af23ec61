// SPDX-License-Identifier: GPL-3.0-or-later
#include "judge/verdict.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace tavrix::judge
{

namespace
{

std::string tenths(double seconds)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.1f", seconds);
    return text.data();
}

std::string counted(std::int64_t count, const char* one, const char* many)
{
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

std::string from(const Finding& finding)
{
    return finding.from ? " from " + clockText(*finding.from) + " on" : std::string();
}

std::string secondsOf(const Finding& finding)
{
    return tenths(finding.seconds) + " of " + tenths(finding.ofSeconds) + " s";
}

std::string aboutSource(const Finding& finding)
{
    switch (finding.cause) {
    case Cause::EndedEarly:
        return secondsOf(finding) + " could be read";
    case Cause::SoundEndedEarly:
        return secondsOf(finding) + " of the sound could be read";
    case Cause::CutOff:
        return "the source ends in the middle of a packet";
    case Cause::DamagedPictures:
        return "source damaged: " + counted(finding.count, "picture", "pictures") + from(finding);
    case Cause::DamagedSound:
        return "source damaged: " + counted(finding.count, "sound packet", "sound packets") + from(finding);
    case Cause::LostPackets:
        return "source damaged: packets missing at " + counted(finding.count, "place", "places") + from(finding);
    case Cause::ReadError:
        return "the source cannot be read to its end (" + finding.text + ')';
    default:
        return {};
    }
}

// Why the output did not take its name.
std::string aboutName(const Finding& finding)
{
    switch (finding.cause) {
    case Cause::TooSmall:
        return "the output is too small to replace an older one (" + std::to_string(finding.count) + " bytes)";
    case Cause::OlderKept:
        return "what stands under its name is kept";
    case Cause::NameTaken:
        return "another file has appeared under its name and is kept";
    case Cause::NotPublished:
        return "the output could not take its name (" + finding.text + ')';
    default:
        return aboutSource(finding);
    }
}

} // namespace

std::string clockText(double seconds)
{
    const auto all = static_cast<std::int64_t>(std::llround(std::max(0.0, seconds) * 10));
    const std::int64_t minutes = all / 600;
    std::array<char, 64> text{};
    if (minutes >= 60) {
        std::snprintf(text.data(), text.size(), "%lld:%02lld:%02lld.%lld", static_cast<long long>(minutes / 60),
                      static_cast<long long>(minutes % 60), static_cast<long long>(all % 600 / 10),
                      static_cast<long long>(all % 10));
    } else {
        std::snprintf(text.data(), text.size(), "%lld:%02lld.%lld", static_cast<long long>(minutes),
                      static_cast<long long>(all % 600 / 10), static_cast<long long>(all % 10));
    }
    return text.data();
}

std::string englishText(const Finding& finding)
{
    switch (finding.cause) {
    case Cause::NotReadable:
        return "the output cannot be read (" + finding.text + ')';
    case Cause::NoPicture:
        return "the output has no pictures";
    case Cause::NoSound:
        return "the output has no sound";
    case Cause::ShorterPicture:
        return "the output has pictures for " + secondsOf(finding) + " that can be read of the source";
    case Cause::ShorterSound:
        return "the output has sound for " + secondsOf(finding) + " that can be read of the source";
    case Cause::LongerPicture:
        return "the output has pictures for " + tenths(finding.seconds) + " s instead of " + tenths(finding.ofSeconds) +
               " s";
    case Cause::PictureCount:
        return "the output has " + counted(finding.count, "picture", "pictures") + " instead of " +
               std::to_string(finding.ofCount);
    case Cause::BrokenPackets:
        return counted(finding.count, "packet", "packets") + " of the output cannot be read" + from(finding);
    case Cause::EndsNotDecodable:
        return "the first or the last picture of the output cannot be decoded";
    case Cause::NothingDecodable:
        return "none of the source's pictures can be decoded";
    case Cause::NothingReadable:
        return "none of the source's pictures can be read";
    case Cause::PicturesElsewhere:
        return "the source's pictures are in another file";
    case Cause::Encrypted:
        return "the source is encrypted";
    case Cause::NotJudged:
        return "the output could not be compared with its source (" + finding.text + ')';
    case Cause::HiddenShown:
        return counted(finding.count, "picture", "pictures") + " that the source hides can be seen in the output";
    default:
        return aboutName(finding);
    }
}

std::string englishText(const Verdict& verdict)
{
    if (verdict.findings.empty() && verdict.outcome == Outcome::Whole) {
        return {};
    }
    std::string text = verdict.outcome == Outcome::Whole        ? "Whole"
                       : verdict.outcome == Outcome::Incomplete ? "Incomplete"
                                                                : "Failed";
    const char* separator = ": ";
    for (const Finding& finding : verdict.findings) {
        text += separator + englishText(finding);
        separator = "; ";
    }
    return text;
}

} // namespace tavrix::judge
