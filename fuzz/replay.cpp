// SPDX-License-Identifier: GPL-3.0-or-later
// Runs a target on every file of the folders given, for builds without a fuzzer.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace
{

bool replay(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (file.bad() || !file.is_open()) {
        std::fprintf(stderr, "%s cannot be read\n", path.c_str());
        return false;
    }
    // The last one named is the one that a crash is about.
    std::printf("%s\n", path.filename().c_str());
    std::fflush(stdout);
    // Nothing of a fuzzer's bytes may be kept, so that each has a copy of its own, of exactly its size.
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    return LLVMFuzzerTestOneInput(input.data(), input.size()) == 0;
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::filesystem::path> paths;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
            if (entry.is_regular_file()) {
                paths.push_back(entry.path());
            }
        }
    }
    std::sort(paths.begin(), paths.end());
    const bool good = std::all_of(paths.begin(), paths.end(), replay);
    if (paths.empty()) {
        std::fprintf(stderr, "no corpus\n");
    }
    return good && !paths.empty() ? 0 : 1;
}
