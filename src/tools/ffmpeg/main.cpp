// SPDX-License-Identifier: GPL-3.0-or-later
// The tool itself is small: what needs the media libraries stands in a module, and most of a short run's time would be
// their loading.
#include "tools/ffmpeg/errorstream.h"
#include "tools/ffmpeg/locate.h"
#include "tools/ffmpeg/mediamodule.h"
#include "tools/ffmpeg/start.h"

#include <cstdio>
#include <dlfcn.h>
#include <exception>

namespace
{

int runInModule(int argc, char** argv)
{
    const std::string path = tavrix::front::mediaModulePath();
    void* const module = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    void* const entry = module == nullptr ? nullptr : dlsym(module, tavrix::front::mediaModuleEntry);
    if (entry == nullptr) {
        const char* const reason = dlerror();
        tavrix::front::printLine("ffmpeg: error while loading shared libraries: " +
                                 std::string(reason == nullptr ? path.c_str() : reason));
        return tavrix::front::notInstalled;
    }
    return reinterpret_cast<tavrix::front::MediaModuleRun*>(entry)(argc, argv);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
        const auto start = tavrix::front::startRun(argc > 0 ? argv[0] : "ffmpeg", words);
        const int* const status = std::get_if<int>(&start);
        return status != nullptr ? *status : runInModule(argc, argv);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "ffmpeg: %s\n", failure.what());
        return 1;
    }
}
