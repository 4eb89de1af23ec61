// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/playlistdates.h"

#include <cstdio>
#include <cstring>

namespace
{

constexpr int exitDone = 0;
constexpr int exitFailed = 1;
constexpr int exitUsage = 2;

void printUsage(std::FILE* stream)
{
    std::fputs(
        "Usage: gettimestamps FOLDER\n"
        "Prints the recording date of every clip that the AVCHD playlists (.MPL) of FOLDER name, one line a clip:\n"
        "  00001 : clip-2010-05-01 12;34;56\n"
        "Exit codes: 0 done, 1 the folder cannot be read, 2 wrong usage.\n",
        stream);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
        printUsage(stdout);
        return exitDone;
    }
    if (argc != 2 || argv[1][0] == '\0') {
        printUsage(stderr);
        return exitUsage;
    }
    if (!tavrix::printPlaylistDates(argv[1], stdout, stderr)) {
        return exitFailed;
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fputs("gettimestamps: the dates cannot be written\n", stderr);
        return exitFailed;
    }
    return exitDone;
}
