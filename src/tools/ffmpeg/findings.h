// SPDX-License-Identifier: GPL-3.0-or-later
// What the lines of a run mean for it.
#pragma once

#include <string>

namespace tavrix::front
{

struct Findings {
    std::string version;          // of the installed ffmpeg
    std::string refusedOption;    // an option it does not know
    bool annexBRefused = false;   // the stream is not H.264
    bool inputDescribed = false;  // an input was opened
    bool outputDescribed = false; // an output was opened
    std::string writeFailure;     // the line that tells of a damaged output
    std::string readFailure;      // the input that could not be read to its end, and why
    bool framesCounted = false;   // progress told of a picture
    bool nothingEncoded = false;  // so ffmpeg says
    bool summaryEmpty = false;    // its summary names no content
    bool undecodable = false;     // not one picture came out of the decoder
    bool indexMissing = false;    // the input is a movie without its header
    bool foreignFormat = false;   // the input is in a format that is not handled
    int decodeErrors = 0;         // lines that tell of frames refused or damaged

    // Without pictures the header alone makes the file, and ffmpeg does not always say so.
    [[nodiscard]] bool outputIsEmpty() const { return nothingEncoded || (summaryEmpty && !framesCounted); }

    // Concludes from a line without the names of files; `shown` is the line with the caller's names.
    void note(const std::string& line, const std::string& shown);
};

} // namespace tavrix::front
