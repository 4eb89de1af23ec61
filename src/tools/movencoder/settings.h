// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "sys/result.h"

#include <optional>
#include <string>

// What the tool shall write, as read from a settings file.
namespace tavrix::movencoder
{

// The numbers are those of the program's output formats; they name the sections of a settings file.
enum class Format {
    AppleIntermediate = 4,
    ProRes = 5,
};

struct FormatSettings {
    // Size of the output in square pixels; 0 and 0: the source's size and pixel aspect.
    int width = 0;
    int height = 0;
    // Whether a picture of another shape gets black borders; otherwise it is stretched and its pixel aspect tells so.
    bool letterbox = false;
    // Apple Intermediate: a fixed quantiser, or a largest size of a frame in bytes (then bytesPerFrame > 0).
    int quantiser = 3;
    int bytesPerFrame = 0;
    // ProRes: 0 proxy, 1 lt, 2 standard, 3 hq.
    int profile = 2;
};

struct Settings {
    Format defaultFormat = Format::ProRes;
    std::optional<FormatSettings> appleIntermediate;
    std::optional<FormatSettings> proRes;

    [[nodiscard]] const std::optional<FormatSettings>& of(Format format) const
    {
        return format == Format::AppleIntermediate ? appleIntermediate : proRes;
    }
};

[[nodiscard]] std::optional<Format> formatOfNumber(long long number);
[[nodiscard]] const char* formatName(Format format);

// Reads a property list; it fails for anything that is not understood.
[[nodiscard]] Result<Settings> readSettings(const std::string& path);
[[nodiscard]] Result<Settings> parseSettings(const std::string& text);

} // namespace tavrix::movencoder
