// SPDX-License-Identifier: GPL-3.0-or-later
#include "judge/publication.h"

#include <algorithm>

namespace tavrix::judge
{

namespace
{

Verdict failed(Verdict verdict, Finding finding)
{
    verdict.outcome = Outcome::Failed;
    verdict.findings.insert(verdict.findings.begin(), std::move(finding));
    return verdict;
}

bool isJudged(const Verdict& verdict)
{
    return std::ranges::none_of(verdict.findings,
                                [](const Finding& finding) { return finding.cause == Cause::NotJudged; });
}

} // namespace

Verdict unjudged(const std::string& reason)
{
    return {Outcome::Whole, {{.cause = Cause::NotJudged, .text = reason}}};
}

Verdict besideOlder(Verdict verdict, const std::string& path, std::int64_t bytes, const publication::Terms& terms)
{
    const auto standing = linkStatus(path.c_str());
    // Who calls without terms has asked for the replacement in person.
    const bool asked = !terms.given && !isJudged(verdict);
    if (!standing || asked || verdict.outcome == Outcome::Failed) {
        return verdict;
    }
    if (publication::forbid(terms, identityOf(*standing))) {
        return failed(std::move(verdict), {.cause = Cause::NameTaken});
    }
    if (verdict.outcome == Outcome::Incomplete || !isJudged(verdict)) {
        return failed(std::move(verdict), {.cause = Cause::OlderKept});
    }
    if (bytes < leastReplacingBytes) {
        return failed(std::move(verdict), {.cause = Cause::TooSmall, .count = bytes});
    }
    return verdict;
}

Verdict notPublished(Verdict verdict, const std::string& path, const std::string& reason,
                     const publication::Terms& terms)
{
    const auto standing = linkStatus(path.c_str());
    if (standing && publication::forbid(terms, identityOf(*standing))) {
        return failed(std::move(verdict), {.cause = Cause::NameTaken});
    }
    return failed(std::move(verdict), {.cause = Cause::NotPublished, .text = reason});
}

} // namespace tavrix::judge
