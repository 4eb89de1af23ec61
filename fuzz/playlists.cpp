// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as an AVCHD playlist: each line has the form that the program reads. The marker scan prints what stands
// beside a marker, in as many digits as it takes; the structure gives dates and names of five digits only.
#include "input.h"
#include "media/playlistdates.h"

#include <string_view>

namespace
{

bool isHexDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

// The figures of the pattern stand for figures of a kind.
bool hasForm(std::string_view line, std::string_view form, bool (*isFigure)(char))
{
    if (line.size() != form.size()) {
        return false;
    }
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (form[i] == '0' ? !isFigure(line[i]) : line[i] != form[i]) {
            return false;
        }
    }
    return true;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tavrix;
    for (const std::string& line : playlistLinesByMarker(data, size)) {
        const auto end = line.find(' ');
        fuzz::require(end >= 5 && end <= 6);
        fuzz::require(hasForm(std::string_view(line).substr(end), " : clip-2000-00-00 00;00;00\n", isHexDigit));
    }
    for (const std::string& line : playlistLinesByStructure(data, size)) {
        fuzz::require(hasForm(line, "00000 : clip-0000-00-00 00;00;00\n", isDigit));
    }
    static_cast<void>(playlistLines(data, size));
    return 0;
}
