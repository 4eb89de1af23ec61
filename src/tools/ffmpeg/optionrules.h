// SPDX-License-Identifier: GPL-3.0-or-later
// The options of the classic command line: where each one belongs, how the installed ffmpeg spells it, and what the
// tool does with it. No other file knows an option by its name.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tavrix::front
{

// Which file an option belongs to.
enum class OptionSide {
    Global,      // the whole run
    Following,   // the next file on the command line
    Output,      // the next output, also when an input stands between
    Shape,       // the next file; lost before an input of no named container, which says all this of itself
    OutputShape, // the next output; lost when an input stands between
    Report,      // asks ffmpeg about itself (-version, -codecs)
};

// What the tool does with an option beside putting it where it belongs.
enum class OptionTreatment {
    Plain,            // goes on under its installed name
    Ignored,          // does not go on
    Input,            // its value is the name of an input
    Overwrite,        // outputs may replace files
    KeepExisting,     // outputs may not, whatever else is said
    Verbosity,        // says how much the transcript tells
    TimestampDebug,   // the transcript tells of every packet
    Container,        // an output gets one, in front of its other options
    FrameSpacing,     // an output gets one, behind its filters
    Rate,             // becomes filters where the picture is encoded
    Channels,         // two of them are mixed at the source's own level
    PictureFilters,   // become one chain with the tool's own
    SoundFilters,     // likewise
    FilterGraph,      // the picture's rate is left to it, and it may choose any part of the clip
    BitstreamFilters, // of the picture; the stream may refuse one of them
    DottedMap,        // chooses a stream; a classic dot stands between file and stream
    EncoderOptions,   // the encoder's own, as a preset file writes them
    NoPicture,        // leaves the picture out
    NoSound,          // leaves the sound out
    PictureCodec,     // copies or encodes the picture
    SoundCodec,       // copies or encodes the sound
    EveryCodec,       // copies or encodes both
    FrameCount,       // ends the output after so many
    Part,             // lets less than the whole clip into the output
};

struct OptionRule {
    OptionSide side = OptionSide::Following;
    bool takesValue = true;
    std::string installedName; // the spelling that ffmpeg 4 to 7 know, without the dash
    OptionTreatment treatment = OptionTreatment::Plain;
    bool known = false; // it is in the table
};

// The rule for an option given without its dash ("vframes", "codec:v"). A stream specifier that the table does not have
// keeps side and value of the name before it, and is plain. An option that is not known takes a value, unless another
// option follows, and belongs to the next file.
[[nodiscard]] OptionRule optionRule(std::string_view name);

// A row of the table.
struct OptionRow {
    std::string_view name;
    OptionSide side;
    bool takesValue;
    std::string_view installedName; // "": unchanged
    OptionTreatment treatment;
    std::string_view reason; // why the row says so
};

[[nodiscard]] std::span<const OptionRow> optionTable();

} // namespace tavrix::front
