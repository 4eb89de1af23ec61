// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The output formats, a row each: what differs from one to the other stands here, and in the texts of the format
// (prefCaptionN in Localizable, Win_formatN and Win_formatUseN in Window).

#include <QStringList>

namespace tavrix
{

struct ForecastRequest;

// One row's values on their way to an argument list.
struct EncodeJob {
    QString source;
    QString destination;
    QString wrapper; // as ffmpeg names it
    float framesPerSecond = 0;
    float aspect = 0; // width over height as shown
};

struct OutputFormat {
    // Of the output, without its dot. The codec is that of the source's picture and may be nothing.
    QString (*extension)(const QString& codec);
    // Adds what stands behind the source on ffmpeg's command line, the destination included.
    void (*addArguments)(QStringList& arguments, const EncodeJob& job);
    // What the check of the free space reckons with, in the unit of the source's size. The length is in seconds.
    double (*spaceEstimate)(double seconds, double sourceSize);
    // Bits a second of the output, for people; 0 when the request does not tell what the format needs.
    double (*pictureBits)(const ForecastRequest& request);
    double (*soundBits)(const ForecastRequest& request);
    // Whether the encoder's settings come from the folder "presets", without which it would be another encode.
    bool needsPresets;
    // The setting that sends the output on to movencoder (0: not); null where there is no second pass.
    int (*secondPassSetting)();
};

inline constexpr int outputFormatCount = 6;
inline constexpr int defaultOutputFormat = 3;
inline constexpr int formatOfOtherNumbers = 5;

[[nodiscard]] constexpr bool isOutputFormat(int out)
{
    return out >= 0 && out < outputFormatCount;
}
// A number that is none is encoded like formatOfOtherNumbers.
[[nodiscard]] const OutputFormat& outputFormat(int out);
// Whether the picture is made by movencoder from a copy. What the settings say is another question.
[[nodiscard]] bool isTwoPassFormat(int out);
// Whether the settings send this format's output on to movencoder.
[[nodiscard]] bool hasSecondPass(int out);

} // namespace tavrix
