// SPDX-License-Identifier: GPL-3.0-or-later
// Any text as what a clip says of itself: it adds no stream to its description and no character that a terminal obeys.
#include "base/text/shownname.h"
#include "input.h"
#include "probe/ffinfos.h"
#include "tools/ffmpeg/metadatalines.h"
#include "tools/ffmpeg/streamlines.h"
#include "tools/ffmpeg/textpieces.h"

#include <algorithm>

namespace
{

using namespace tavrix;

void checkDefused(const std::string& line)
{
    const std::string defused = front::defusedMetadataLine(line);
    fuzz::require(defused.size() == line.size());
    fuzz::require(front::defusedMetadataLine(defused) == defused);
    for (const char* phrase : {"Stream #", "Input #", "Duration: ", "Video: ", " time="}) {
        fuzz::require(defused.find(phrase) == std::string::npos);
    }
    static_cast<void>(front::isMetadataLine(line));
    const auto described = front::classicStreamLine(line, {false, true});
    fuzz::require(!described || front::describedStream(line).has_value());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string given(reinterpret_cast<const char*>(data), size);
    const std::string valid = front::validUtf8(given);
    fuzz::require(front::validUtf8(valid) == valid);
    const QString text = QString::fromStdString(given);
    const QString shown = shownText(text);
    fuzz::require(std::ranges::none_of(shown, [](QChar c) { return c.unicode() < 0x20 || c.unicode() == 0x7f; }));
    fuzz::require(shownText(shown) == shown);
    fuzz::require(!shown.contains(QChar(0x202e)) && !shown.contains(QChar(0x2028)));
    const std::string line = front::onOneLine(given);
    fuzz::require(line.find_first_of("\r\n\x1b") == std::string::npos);
    for (const std::string& piece : fuzz::pieces(given, '\n')) {
        checkDefused(piece);
    }
    return 0;
}
