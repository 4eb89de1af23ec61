// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/optionrules.h"

#include <algorithm>
#include <array>

namespace tavrix::front
{

namespace
{

struct Row {
    std::string_view name;
    OptionSide side;
    bool takesValue;
    std::string_view modernName; // empty: unchanged
};

using enum OptionSide;

constexpr std::array rows = {
    Row{"y", Global, false, ""},
    Row{"n", Global, false, ""},
    Row{"v", Global, true, ""},
    Row{"loglevel", Global, true, ""},
    Row{"stats", Global, false, ""},
    Row{"nostats", Global, false, ""},
    Row{"hide_banner", Global, false, ""},
    Row{"stdin", Global, false, ""},
    Row{"nostdin", Global, false, ""},
    Row{"benchmark", Global, false, ""},
    Row{"dump", Global, false, ""},
    Row{"hex", Global, false, ""},
    Row{"copyts", Global, false, ""},
    Row{"start_at_zero", Global, false, ""},
    Row{"debug_ts", Global, false, ""},
    Row{"xerror", Global, false, ""},
    Row{"ignore_unknown", Global, false, ""},
    Row{"psnr", Global, false, ""},
    Row{"vstats", Global, false, ""},
    Row{"vsync", Output, true, ""},
    Row{"fps_mode", Output, true, ""},
    Row{"filter_complex", Global, true, ""},
    Row{"progress", Global, true, ""},

    Row{"vframes", Output, true, "frames:v"},
    Row{"aframes", Output, true, "frames:a"},
    Row{"dframes", Output, true, "frames:d"},
    Row{"frames", Output, true, ""},
    Row{"t", Output, true, ""},
    Row{"fs", Output, true, ""},
    Row{"an", Output, false, ""},
    Row{"vn", Output, false, ""},
    Row{"sn", Output, false, ""},
    Row{"dn", Output, false, ""},
    Row{"vb", Output, true, "b:v"},
    Row{"ab", Output, true, "b:a"},
    Row{"b", Output, true, ""},
    Row{"maxrate", Output, true, ""},
    Row{"minrate", Output, true, ""},
    Row{"bufsize", Output, true, ""},
    Row{"g", Output, true, ""},
    Row{"qscale", Output, true, ""},
    Row{"q", Output, true, ""},
    Row{"vbsf", Output, true, "bsf:v"},
    Row{"absf", Output, true, "bsf:a"},
    Row{"bsf", Output, true, ""},
    Row{"vf", Output, true, ""},
    Row{"vfilters", Output, true, "vf"},
    Row{"af", Output, true, ""},
    Row{"filter", Output, true, ""},
    Row{"map", Output, true, ""},
    Row{"metadata", Output, true, ""},
    Row{"shortest", Output, false, ""},
    Row{"sameq", Output, false, ""},
    Row{"deinterlace", Output, false, ""},
    Row{"intra", Output, false, ""},
    Row{"copyinkf", Output, false, ""},
    Row{"vtag", Output, true, "tag:v"},
    Row{"atag", Output, true, "tag:a"},
    Row{"vpre", Output, true, ""},
    Row{"apre", Output, true, ""},
    Row{"fpre", Output, true, ""},
    Row{"x264opts", Output, true, ""},
    Row{"update", Output, true, ""},

    Row{"s", Shape, true, ""},
    Row{"r", Shape, true, ""},
    Row{"pix_fmt", Shape, true, ""},
    Row{"ac", Shape, true, ""},
    Row{"ar", Shape, true, ""},
    Row{"aspect", Shape, true, ""},

    Row{"f", Following, true, ""},
    Row{"ss", Following, true, ""},
    Row{"re", Following, false, ""},
    Row{"accurate_seek", Following, false, ""},
    Row{"noaccurate_seek", Following, false, ""},
    Row{"vcodec", Following, true, ""},
    Row{"acodec", Following, true, ""},
    Row{"scodec", Following, true, ""},
    Row{"codec", Following, true, ""},
    Row{"c", Following, true, ""},
    Row{"strict", Following, true, ""},
    Row{"fdebug", Following, true, ""},

    Row{"version", Report, false, ""},
    Row{"formats", Report, false, ""},
    Row{"codecs", Report, false, ""},
    Row{"decoders", Report, false, ""},
    Row{"encoders", Report, false, ""},
    Row{"bsfs", Report, false, ""},
    Row{"protocols", Report, false, ""},
    Row{"filters", Report, false, ""},
    Row{"pix_fmts", Report, false, ""},
    Row{"sample_fmts", Report, false, ""},
    Row{"muxers", Report, false, ""},
    Row{"demuxers", Report, false, ""},
    Row{"layouts", Report, false, ""},
    Row{"buildconf", Report, false, ""},
    Row{"L", Report, false, ""},
    Row{"h", Report, false, ""},
    Row{"?", Report, false, ""},
    Row{"help", Report, false, ""},
};

const Row* rowFor(std::string_view name)
{
    const auto base = name.substr(0, name.find(':'));
    const auto* const found = std::ranges::find(rows, base, &Row::name);
    return found == rows.end() ? nullptr : found;
}

} // namespace

OptionRule optionRule(std::string_view name)
{
    const Row* row = rowFor(name);
    if (row == nullptr) {
        return {OptionSide::Following, true, std::string(name)};
    }
    const bool renamed = !row->modernName.empty() && name == row->name;
    std::string modern(renamed ? row->modernName : name);
    // Without a stream specifier these two mean the video and draw a warning, or an error, today.
    if (name == "b" || name == "qscale" || name == "q") {
        modern = name == "b" ? "b:v" : "q:v";
    }
    return {row->side, row->takesValue, modern};
}

bool isKnownOption(std::string_view name)
{
    return rowFor(name) != nullptr;
}

} // namespace tavrix::front
