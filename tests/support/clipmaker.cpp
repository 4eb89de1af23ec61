// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/clipmaker.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrix::test
{

bool runFfmpegUnchecked(std::vector<std::string> words)
{
    words.insert(words.begin(), {"ffmpeg", "-nostdin", "-hide_banner", "-v", "quiet", "-y"});
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    pid_t child = 0;
    int status = -1;
    return posix_spawnp(&child, "ffmpeg", nullptr, nullptr, arguments.data(), environ) == 0 &&
           waitpid(child, &status, 0) == child && status == 0;
}

bool runFfmpeg(std::vector<std::string> words)
{
    const bool good = runFfmpegUnchecked(words);
    EXPECT_TRUE(good) << testing::PrintToString(words);
    return good;
}

std::string bytesOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

void putBytes(const std::string& path, std::string_view bytes)
{
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(file.good()) << path;
}

std::uint32_t bigEndian32(std::string_view bytes, std::size_t offset)
{
    std::uint32_t value = 0;
    for (const char byte : bytes.substr(offset, 4)) {
        value = (value << 8) | static_cast<std::uint8_t>(byte);
    }
    return value;
}

void setBigEndian32(std::string& bytes, std::size_t offset, std::uint32_t value)
{
    for (std::size_t i = 0; i < 4; ++i) {
        bytes.at(offset + i) = static_cast<char>(value >> (24 - 8 * i));
    }
}

} // namespace tavrix::test
