// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Planning of a new, self-contained movie file from an edited one, without decoding.

#include "media/movieheader.h"
#include "sys/result.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrix
{

struct RewriteRequest {
    const MovieAtoms* movie = nullptr;
    std::uint64_t fileSize = 0; // of the source
    EditTimeline timeline;
    std::vector<TrackChange> changes; // by track index; missing ones change nothing
    std::optional<DisplayScale> displayScale;
};

class RewritePlan
{
public:
    // Fails when the source's tables cannot be trusted or its media lie elsewhere.
    [[nodiscard]] static Result<RewritePlan> make(const RewriteRequest& request);

    // Stretches to copy, in the order in which they follow one another in the new file's media data.
    [[nodiscard]] const std::vector<CopyRun>& copies() const { return copies_; }
    [[nodiscard]] std::uint64_t dataSize() const { return dataSize_; }
    // The whole movie atom for media data that start there. Its size does not depend on where.
    [[nodiscard]] std::vector<std::uint8_t> movieAtom(std::uint64_t dataStart) const;

private:
    void layOut();

    const MovieAtoms* movie_ = nullptr;
    std::uint32_t timeScale_ = 0;
    std::uint64_t duration_ = 0;
    std::optional<DisplayScale> displayScale_;
    bool edited_ = false;
    std::vector<TrackRewrite> tracks_;
    std::vector<CopyRun> copies_;
    std::uint64_t dataSize_ = 0;
};

} // namespace tavrix
