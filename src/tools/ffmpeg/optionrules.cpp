// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/optionrules.h"

#include <algorithm>
#include <array>

namespace tavrix::front
{

namespace
{

using enum OptionSide;
using enum OptionTreatment;
using Row = OptionRow;

constexpr bool flag = false;
constexpr bool value = true;

constexpr std::array rows = {
    // Of the whole run.
    Row{"y", Global, flag, "", Overwrite, "the tool itself puts outputs under their names"},
    Row{"n", Global, flag, "", KeepExisting, "the tool itself puts outputs under their names"},
    Row{"v", Global, value, "", Verbosity, "a classic number; the transcript has to appear at every one"},
    Row{"loglevel", Global, value, "", Ignored, "the transcript has to appear whatever it says"},
    Row{"stats", Global, flag, "", Ignored, "progress is always told"},
    Row{"nostats", Global, flag, "", Ignored, "progress is always told"},
    Row{"hide_banner", Global, flag, "", Ignored, "callers read the version in the banner"},
    Row{"stdin", Global, flag, "", Ignored, "a byte on standard input could end an encode"},
    Row{"nostdin", Global, flag, "", Ignored, "the tool always says it itself"},
    Row{"benchmark", Global, flag, "", Plain, "a flag: the next word is no value"},
    Row{"dump", Global, flag, "", Plain, "a flag: the next word is no value"},
    Row{"hex", Global, flag, "", Plain, "a flag: the next word is no value"},
    Row{"copyts", Global, flag, "", Part, "times that do not begin at 0 cannot be compared with the clip's"},
    Row{"start_at_zero", Global, flag, "", Plain, "a flag: the next word is no value"},
    Row{"debug_ts", Global, flag, "", Plain, "a flag: the next word is no value"},
    Row{"xerror", Global, flag, "", Plain, "a flag: the next word is no value"},
    Row{"ignore_unknown", Global, flag, "", Plain, "a flag: the next word is no value"},
    Row{"psnr", Global, flag, "", Plain, "a flag: the next word is no value"},
    Row{"vstats", Global, flag, "", Plain, "a flag: the next word is no value"},
    Row{"progress", Global, value, "", Plain, "one report for all outputs"},
    Row{"filter_complex", Global, value, "", FilterGraph, "no filter of the tool's fits beside a graph"},
    Row{"lavfi", Following, value, "", FilterGraph, "another word for filter_complex"},

    // Of the output, although they may stand before the input.
    Row{"vframes", Output, value, "frames:v", FrameCount, "may stand before the input; the installed name is another"},
    Row{"aframes", Output, value, "frames:a", FrameCount, "may stand before the input; the installed name is another"},
    Row{"dframes", Output, value, "frames:d", Plain, "may stand before the input; it ends neither picture nor sound"},
    Row{"frames", Output, value, "", FrameCount, "in the way of -vframes"},
    Row{"frames:v", Output, value, "", FrameCount, "in the way of -vframes"},
    Row{"frames:a", Output, value, "", FrameCount, "in the way of -aframes"},
    Row{"t", Output, value, "", Part, "may stand before the input, which the installed ffmpeg would cut"},
    Row{"to", Following, value, "", Part, "no classic option; the end of a part"},
    Row{"fs", Output, value, "", Part, "may stand before the input, which has no such option"},
    Row{"shortest", Output, flag, "", Part, "ends the output with its shortest stream"},
    Row{"an", Output, flag, "", NoSound, "may stand before the input, which would lose its sound"},
    Row{"vn", Output, flag, "", NoPicture, "may stand before the input, which would lose its picture"},
    Row{"sn", Output, flag, "", Plain, "may stand before the input, which would lose such streams"},
    Row{"dn", Output, flag, "", Plain, "may stand before the input, which would lose such streams"},
    Row{"vb", Output, value, "b:v", Plain, "may stand before the input; the installed name is another"},
    Row{"ab", Output, value, "b:a", Plain, "may stand before the input; the installed name is another"},
    Row{"b", Output, value, "b:v", Plain, "classic for the picture; the installed ffmpeg calls it ambiguous"},
    Row{"maxrate", Output, value, "", Plain, "may stand before the input, which has no such option"},
    Row{"minrate", Output, value, "", Plain, "may stand before the input, which has no such option"},
    Row{"bufsize", Output, value, "", Plain, "may stand before the input, which has no such option"},
    Row{"g", Output, value, "", Plain, "may stand before the input, which has no such option"},
    Row{"qscale", Output, value, "q:v", Plain, "classic for the picture; the installed ffmpeg calls it ambiguous"},
    Row{"q", Output, value, "q:v", Plain, "classic for the picture; the installed ffmpeg calls it ambiguous"},
    Row{"vbsf", Output, value, "bsf:v", BitstreamFilters, "no classic stream refused the filter for H.264"},
    Row{"bsf:v", Output, value, "", BitstreamFilters, "in the way of -vbsf"},
    Row{"absf", Output, value, "bsf:a", Plain, "may stand before the input; the installed name is another"},
    Row{"bsf", Output, value, "", Plain, "may stand before the input, which would be filtered"},
    Row{"vf", Output, value, "", PictureFilters, "ffmpeg takes one chain, and the clip's own filters stand in front"},
    Row{"vfilters", Output, value, "vf", PictureFilters, "the classic long name of -vf"},
    Row{"filter:v", Output, value, "", PictureFilters, "in the way of -vf"},
    Row{"af", Output, value, "", SoundFilters, "ffmpeg takes one chain, and the clip's own filters stand around"},
    Row{"filter:a", Output, value, "", SoundFilters, "in the way of -af"},
    Row{"filter", Output, value, "", Plain, "may stand before the input; for which stream only ffmpeg knows"},
    Row{"map", Output, value, "", DottedMap, "a classic dot stands between file and stream"},
    Row{"metadata", Output, value, "", Plain, "may stand before the input, which has no such option"},
    Row{"sameq", Output, flag, "", Plain, "a flag, which the installed ffmpeg refuses in plain words"},
    Row{"deinterlace", Output, flag, "", Plain, "a flag, which the installed ffmpeg refuses in plain words"},
    Row{"intra", Output, flag, "", Plain, "a flag, which the installed ffmpeg refuses in plain words"},
    Row{"copyinkf", Output, flag, "", Plain, "a flag: the next word is no value"},
    Row{"vtag", Output, value, "tag:v", Plain, "may stand before the input; the installed name is another"},
    Row{"atag", Output, value, "tag:a", Plain, "may stand before the input; the installed name is another"},
    Row{"vpre", Output, value, "", Plain, "may stand before the input; a preset is an encoder's"},
    Row{"apre", Output, value, "", Plain, "may stand before the input; a preset is an encoder's"},
    Row{"fpre", Output, value, "", Plain, "may stand before the input; a preset is an encoder's"},
    Row{"x264opts", Output, value, "", EncoderOptions, "a line of a preset file has one equals sign"},
    Row{"update", Output, value, "", Plain, "may stand before the input, which has no such option"},
    Row{"vsync", Output, value, "", FrameSpacing, "classic values fail with a rate, or at two frames of one time"},
    Row{"fps_mode", Output, value, "", FrameSpacing, "the installed name of -vsync; the version decides which is said"},

    // What a file says of itself.
    Row{"s", Shape, value, "", Plain, "only a raw input needs to be told"},
    Row{"r", Shape, value, "", Rate, "only a raw input needs to be told; ffmpeg's own way lags at a halved rate"},
    Row{"pix_fmt", Shape, value, "", Plain, "only a raw input needs to be told"},
    Row{"ac", Shape, value, "", Channels, "only a raw input needs to be told; ffmpeg's own mix is quieter"},
    Row{"ar", Shape, value, "", Plain, "only a raw input needs to be told"},
    Row{"aspect", OutputShape, value, "", Plain, "no input takes it, not even a raw one"},

    // Of the next file, whichever it is.
    Row{"i", Following, value, "", Input, "what begins with a dash is a name behind it"},
    Row{"f", Following, value, "", Container, "the output's name may not show it while it is written"},
    Row{"ss", Following, value, "", Part, "seeks in an input, leaves out in an output"},
    Row{"re", Following, flag, "", Plain, "a flag: the next word is no value"},
    Row{"accurate_seek", Following, flag, "", Plain, "a flag: the next word is no value"},
    Row{"noaccurate_seek", Following, flag, "", Plain, "a flag: the next word is no value"},
    Row{"vcodec", Following, value, "", PictureCodec, "copy or encode decides on filters and on the judge"},
    Row{"codec:v", Following, value, "", PictureCodec, "in the way of -vcodec"},
    Row{"c:v", Following, value, "", PictureCodec, "in the way of -vcodec"},
    Row{"acodec", Following, value, "", SoundCodec, "copy or encode decides on filters and on the judge"},
    Row{"codec:a", Following, value, "", SoundCodec, "in the way of -acodec"},
    Row{"c:a", Following, value, "", SoundCodec, "in the way of -acodec"},
    Row{"scodec", Following, value, "", Plain, "subtitles are passed on as asked"},
    Row{"codec", Following, value, "", EveryCodec, "copy or encode decides on filters and on the judge"},
    Row{"c", Following, value, "", EveryCodec, "in the way of -codec"},
    Row{"strict", Following, value, "", Plain, "decoders and encoders have it"},
    Row{"fdebug", Following, value, "", TimestampDebug,
        "the installed ffmpeg prints its lines at the debug level only"},

    // The installed ffmpeg answers these itself.
    Row{"version", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"formats", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"codecs", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"decoders", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"encoders", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"bsfs", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"protocols", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"filters", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"pix_fmts", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"sample_fmts", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"muxers", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"demuxers", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"layouts", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"buildconf", Report, flag, "", Plain, "about the installed ffmpeg"},
    Row{"L", Report, flag, "", Plain, "the installed ffmpeg's licence"},
    Row{"h", Report, flag, "", Plain, "the installed ffmpeg's help; the tool's own is --help"},
    Row{"?", Report, flag, "", Plain, "the installed ffmpeg's help; the tool's own is --help"},
    Row{"help", Report, flag, "", Plain, "the installed ffmpeg's help; the tool's own is --help"},
};

const Row* rowFor(std::string_view name)
{
    const auto* const found = std::ranges::find(rows, name, &Row::name);
    return found == rows.end() ? nullptr : found;
}

} // namespace

OptionRule optionRule(std::string_view name)
{
    if (const Row* const row = rowFor(name)) {
        const auto installed = row->installedName.empty() ? name : row->installedName;
        return {row->side, row->takesValue, std::string(installed), row->treatment, true};
    }
    const Row* const base = rowFor(name.substr(0, name.find(':')));
    if (base != nullptr) {
        return {base->side, base->takesValue, std::string(name), Plain, true};
    }
    return {Following, true, std::string(name), Plain, false};
}

std::span<const OptionRow> optionTable()
{
    return rows;
}

} // namespace tavrix::front
