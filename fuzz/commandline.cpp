// SPDX-License-Identifier: GPL-3.0-or-later
// Any words as the front's command line: no file is lost or invented on the way to the installed ffmpeg.
#include "input.h"
#include "tools/ffmpeg/arguments.h"
#include "tools/ffmpeg/filters.h"

#include <algorithm>

namespace
{

using namespace tavrix;

front::FileUrls urlsOf(const front::CommandLine& line)
{
    front::FileUrls urls;
    for (std::size_t i = 0; i < line.inputs.size(); ++i) {
        urls.inputs.push_back("file:/in/" + std::to_string(i));
    }
    for (std::size_t i = 0; i < line.outputs.size(); ++i) {
        urls.outputs.push_back({"file:/out/" + std::to_string(i), {"-f", "mov"}});
    }
    return urls;
}

void checkArguments(const front::CommandLine& line, const front::FileUrls& urls, const front::InstalledDialect& dialect)
{
    const std::vector<std::string> arguments = front::installedArguments(line, urls, dialect);
    const auto count = [&](const std::string& word) {
        return std::ranges::count(arguments, word);
    };
    for (const std::string& url : urls.inputs) {
        fuzz::require(count(url) == 1);
    }
    for (const auto& output : urls.outputs) {
        fuzz::require(count(output.url) == 1);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text = fuzz::textOf(ByteView(data, size));
    std::vector<std::string> words = fuzz::pieces(text, '\n');
    // Words that are the names of the urls below would be counted with them.
    std::erase_if(words, [](const std::string& word) { return word.find("file:/") != std::string::npos; });
    const front::CommandLine line = front::parseCommandLine(words);
    fuzz::require(line.inputs.size() + line.outputs.size() <= words.size());
    const front::FileUrls urls = urlsOf(line);
    for (const front::InstalledDialect& dialect :
         {front::InstalledDialect{}, front::InstalledDialect{false, true, false}}) {
        checkArguments(line, urls, dialect);
    }
    static_cast<void>(front::clipJob(line, urls));
    static_cast<void>(front::levelsAreMarked(line));
    static_cast<void>(front::mayRefuseAnnexB(line));
    const std::string filters = front::installedFilters(text);
    fuzz::require(front::installedFilters(filters) == filters || filters.find_first_of("'\"") != std::string::npos);
    return 0;
}
