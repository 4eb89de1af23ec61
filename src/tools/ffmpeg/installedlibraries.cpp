// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/installedlibraries.h"

#include "sys/descriptor.h"
#include "sys/transfer.h"
#include "tools/ffmpeg/banner.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
#include <libswscale/swscale.h>
}

namespace tavrix::front
{

namespace
{

// A program with everything inside is larger than this.
constexpr std::uint64_t largestProgram = 4U << 20U;

struct Library {
    const char* name;
    unsigned version;
};

std::array<Library, 4> loadedLibraries()
{
    return {{{"avutil", avutil_version()},
             {"avcodec", avcodec_version()},
             {"avformat", avformat_version()},
             {"swscale", swscale_version()}}};
}

// "  libavutil      57. 28.100 / 57. 28.100": built with, and running on.
std::string bannerLine(const Library& library)
{
    const unsigned major = library.version >> 16U;
    const unsigned minor = library.version >> 8U & 0xffU;
    const unsigned micro = library.version & 0xffU;
    std::array<char, 64> line = {};
    std::snprintf(line.data(), line.size(), "\n  lib%-11s %2u.%3u.%3u / %2u.%3u.%3u\n", library.name, major, minor,
                  micro, major, minor, micro);
    return line.data();
}

} // namespace

bool standsOnOwnLibraries(const std::string& program, const std::string& banner)
{
    const auto version = installedVersion(banner.substr(0, banner.find('\n')));
    const bool sameBuild =
        version == av_version_info() &&
        banner.find("\n  configuration: " + std::string(avcodec_configuration()) + '\n') != std::string::npos &&
        std::string(avformat_configuration()) == avcodec_configuration();
    const auto libraries = loadedLibraries();
    const auto isTold = [&](const Library& library) {
        return banner.find(bannerLine(library)) != std::string::npos;
    };
    return sameBuild && std::ranges::all_of(libraries, isTold) && namesOwnLibraries(program);
}

bool namesOwnLibraries(const std::string& program)
{
    const Descriptor file = openFile(program.c_str(), O_RDONLY);
    const auto bytes = file.isOpen() ? readAll<std::string>(file.get(), largestProgram) : std::nullopt;
    const auto isNamed = [&](const Library& library) {
        const std::string name = std::string("lib") + library.name + ".so." + std::to_string(library.version >> 16U);
        return bytes->find(name + '\0') != std::string::npos;
    };
    return bytes &&
           bytes->starts_with("\x7f"
                              "ELF") &&
           std::ranges::all_of(loadedLibraries(), isNamed);
}

} // namespace tavrix::front
