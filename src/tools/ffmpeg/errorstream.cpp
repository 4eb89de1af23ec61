// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/errorstream.h"

#include "sys/transfer.h"
#include "tools/common/childprocess.h"
#include "tools/ffmpeg/linesplitter.h"

#include <string_view>
#include <unistd.h>

namespace tavrix::front
{

namespace
{

constexpr std::size_t atomicWrite = 4096; // PIPE_BUF

} // namespace

void printLine(const std::string& text, char end)
{
    std::string line = text;
    line += end;
    for (const std::string_view piece : writablePieces(line, atomicWrite)) {
        if (!writeUnless([] { return interruptingSignal() != 0; }, STDERR_FILENO, piece)) {
            return;
        }
    }
}

} // namespace tavrix::front
