// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Times of a clip and parts of it, as people type and read them.

#include <QString>

#include <optional>

namespace tavrix
{

// A part of a clip, in seconds of what a player shows of it.
struct ClipPart {
    double from = 0;
    std::optional<double> to; // excluded; nothing: to the clip's end

    // Whether it holds anything.
    [[nodiscard]] bool isPossible() const { return from >= 0 && (!to || *to > from); }
    bool operator==(const ClipPart&) const = default;
};

// "10", "0:10", "1:02:03" and each with decimals behind a point or a comma, ".5", ",500": seconds. Nothing for any
// other text, and for minutes or seconds above 59 behind a colon.
[[nodiscard]] std::optional<double> clipTime(const QString& text);

// Takes the time of an option, "--from" or else "--to", into the part. False, and nothing is changed, when it is none.
[[nodiscard]] bool takePartTime(std::optional<ClipPart>& part, const QString& option, const QString& text);

// "0:10", "1:02:03"; what is no whole second has up to three decimals, always behind a point: "0:10.033".
[[nodiscard]] QString clipTimeText(double seconds);

} // namespace tavrix
