// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/mediamodule.h"

#include <array>
#include <climits>
#include <unistd.h>

namespace tavrix::front
{

std::string mediaModulePath()
{
    std::array<char, PATH_MAX> buffer = {};
    const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size() - 1);
    const std::string program = length > 0 ? std::string(buffer.data(), static_cast<std::size_t>(length)) : "";
    const auto slash = program.rfind('/');
    return slash == std::string::npos ? std::string() : program.substr(0, slash) + "/ffmpeg-media.so";
}

} // namespace tavrix::front
