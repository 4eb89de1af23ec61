#pragma once

// What could not be had of a source whose rest is converted.

#include <cstdint>
#include <string>

namespace tavrix::movencoder
{

struct Damage {
    std::int64_t pictures = 0; // decoded with errors, or lost and replaced by the one before
    double firstAt = 0;        // seconds from the start of the clip to the first of them
    bool endsEarly = false;
    double readSeconds = 0;     // how far the pictures go when it ends early
    double declaredSeconds = 0; // how far they should go; 0: not told

    [[nodiscard]] bool any() const { return pictures > 0 || endsEarly; }
};

// A line for a person: "Incomplete: 9.8 of 20.0 s could be read", "Source damaged: 12 pictures from 0:04.2 on", or
// both; "" when nothing is missing.
[[nodiscard]] std::string damageText(const Damage& damage);

} // namespace tavrix::movencoder
