// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How large an output becomes, as far as format, rate, size and length tell. The estimate that decides about the free
// space is another one (encDstPoidsEstimatif): this one is for people.

#include <QString>
#include <QtGlobal>

namespace tavrix
{

struct ForecastRequest {
    int out = 0;            // output format
    double seconds = 0;     // length of the clip
    double rate = 0;        // pictures a second of the output
    int width = 0;          // pixels of the output's picture
    int height = 0;         //
    double pictureBits = 0; // bits a second of the source's pictures, for the formats that copy them
    bool avi = false;       // format 2: Motion-JPEG goes into AVI with plain sound
    bool sound = true;      // false: the clip is silent
};

// Bytes; -1 when a value that the format needs is not known. Formats 4 and 5 spend by content: what is very still or
// very busy becomes half or one and a half times as large.
[[nodiscard]] qint64 forecastBytes(const ForecastRequest& request);

// Bits a second of a source's pictures: its own number where the container tells it, else what the other streams leave
// of the whole, less what the container itself takes. All in kb/s, 0 for unknown; the wrapper as ffmpeg names it.
[[nodiscard]] double pictureBits(int pictureRate, int wholeRate, int soundRates, const QString& wrapper);

} // namespace tavrix
