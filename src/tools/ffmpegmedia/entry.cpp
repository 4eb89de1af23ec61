// SPDX-License-Identifier: GPL-3.0-or-later
// What the tool `ffmpeg` loads when it needs the media libraries.
#include "tools/common/childprocess.h"
#include "tools/ffmpeg/run.h"

#include <cstdio>
#include <exception>
#include <malloc.h>

namespace
{

// A run ends soon, and until then pictures come and go: memory that was had once is kept.
void keepMemory()
{
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, 64 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
}

} // namespace

extern "C" [[gnu::visibility("default")]] int tavrixRunWithMedia(int argc, char** argv)
{
    try {
        keepMemory();
        const std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
        const int status = tavrix::front::runTool(argc > 0 ? argv[0] : "ffmpeg", words);
        if (const int signal = tavrix::interruptingSignal(); signal != 0) {
            tavrix::endBySignal(signal);
        }
        return status;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "ffmpeg: %s\n", failure.what());
        return 1;
    }
}
