// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as what ffmpeg prints: the translation is the same however they arrive, stays on lines, and can be read.
#include "tools/ffmpeg/transcript.h"
#include "input.h"
#include "probe/ffinfos.h"
#include "tools/ffmpeg/linesplitter.h"

namespace
{

using namespace tavrix;

std::string translated(std::string_view text, std::size_t pieceSize, bool levelsMarked, int status)
{
    front::Transcript transcript(
        {{{"file:/proc/self/fd/7", "/home/me/clip.MTS"}}, {{"file:/proc/self/fd/9", "out.mov"}}}, levelsMarked);
    std::string result;
    const auto add = [&](const std::vector<front::TranscriptLine>& lines) {
        for (const front::TranscriptLine& line : lines) {
            fuzz::require(line.text.find_first_of("\r\n") == std::string::npos);
            result += line.text + line.end;
        }
    };
    front::LineSplitter splitter([&](std::string_view line, char end) { add(transcript.translate(line, end)); });
    for (std::size_t i = 0; i < text.size(); i += pieceSize) {
        splitter.feed(text.substr(i, pieceSize));
    }
    splitter.finish();
    add(transcript.finish(status));
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const std::uint8_t kind = input.byte();
    const bool levelsMarked = (kind & 1) != 0;
    const int status = (kind & 2) != 0 ? 1 : 0;
    const std::string whole = translated(input.text(), size + 1, levelsMarked, status);
    fuzz::require(translated(input.text(), 7, levelsMarked, status) == whole);
    static_cast<void>(recordFromBanner(QString::fromStdString(whole)));
    std::size_t length = 0;
    for (const std::string_view piece : front::writablePieces(whole, 100)) {
        fuzz::require(!piece.empty() && piece.size() <= 100);
        length += piece.size();
    }
    fuzz::require(length == whole.size());
    return 0;
}
