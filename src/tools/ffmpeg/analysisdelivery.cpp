// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/analysisdelivery.h"

#include "sys/transfer.h"
#include "tools/ffmpeg/errorstream.h"
#include "tools/ffmpeg/linesplitter.h"
#include "tools/ffmpeg/transcript.h"

#include <unistd.h>
#include <vector>

namespace tavrix::front
{

namespace
{

bool writeOutput(const RunFiles& files, const std::string& bytes)
{
    const auto output = files.outputDescriptor(0);
    if (!output) {
        return bytes.empty();
    }
    if (writeAll(*output, bytes) && !files.shortenedInput()) {
        return true;
    }
    // Whoever writes it next begins anew; where that fails, it does so itself.
    (void)ftruncate(*output, 0);
    (void)lseek(*output, 0, SEEK_SET);
    return false;
}

std::vector<TranscriptLine> translated(const RunFiles& files, const AnalysisDelivery& delivery)
{
    std::vector<TranscriptLine> lines;
    const auto add = [&](const std::vector<TranscriptLine>& more) {
        lines.insert(lines.end(), more.begin(), more.end());
    };
    Transcript transcript(files.names(), false);
    LineSplitter splitter([&](std::string_view line, char end) { add(transcript.translate(line, end)); });
    splitter.feed(delivery.said);
    if (!files.urls().outputs.empty()) {
        splitter.feed(files.urls().outputs.front().url);
    }
    splitter.feed(delivery.saidBehindName);
    splitter.finish();
    add(transcript.finish(delivery.status));
    return lines;
}

} // namespace

bool canDeliver(const RunFiles& files, const std::string& source, bool hasOutput)
{
    const bool plain = files.urls().inputs.size() == 1 && files.urls().inputs.front() == "file:" + source;
    return plain && files.readsRegularFile() && files.writtenFile().has_value() == hasOutput &&
           files.urls().outputs.size() == (hasOutput ? 1 : 0);
}

std::optional<int> deliver(RunFiles& files, const AnalysisDelivery& delivery)
{
    if (!writeOutput(files, delivery.bytes)) {
        return std::nullopt;
    }
    for (const TranscriptLine& line : translated(files, delivery)) {
        printLine(line.text, line.end);
    }
    if (delivery.status != 0) {
        return delivery.status;
    }
    if (const auto published = files.publish(); !published) {
        printLine(published.reason());
        return 1;
    }
    return 0;
}

} // namespace tavrix::front
