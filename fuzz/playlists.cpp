// Any bytes as an AVCHD playlist: each line has the form that the program reads.
#include "input.h"
#include "media/playlistdates.h"

#include <string_view>

namespace
{

// The digits of the pattern stand for any digit.
bool hasForm(const std::string& line)
{
    constexpr std::string_view form = "00000 : clip-2000-00-00 00;00;00\n";
    if (line.size() != form.size()) {
        return false;
    }
    for (std::size_t i = 0; i < form.size(); ++i) {
        const bool digit = line[i] >= '0' && line[i] <= '9';
        if (form[i] == '0' ? !digit : line[i] != form[i]) {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tavrix;
    for (const auto read : {playlistLines, playlistLinesByMarker, playlistLinesByStructure}) {
        for (const std::string& line : read(data, size)) {
            fuzz::require(hasForm(line));
        }
    }
    return 0;
}
