// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ffmpeg/clipsource.h"

#include <algorithm>

#include <sys/stat.h>

namespace tavrix::front
{

Source readClipSource(const std::string& path, const OutputJob& job)
{
    media::OpenRequest request;
    request.path = path;
    const auto input = media::MediaInput::open(request);
    if (!input) {
        return std::nullopt;
    }
    ClipSource source;
    source.facts = media::sourceFactsOf(**input, path);
    source.tags = media::clipTagsOf(**input);
    source.edits = copyEdits(path, source.facts, job);
    return source;
}

Result<void> finishMovie(int descriptor, const ClipSource& source, const OutputJob& job)
{
    HeaderChange change;
    if (source.edits) {
        struct stat info = {};
        if (fstat(descriptor, &info) != 0) {
            return Failure{"its header cannot be read"};
        }
        const auto size = static_cast<std::uint64_t>(info.st_size);
        auto edits = editsOfCopy(*source.edits, readMovieAtoms(readAtOf(descriptor), size), size);
        if (!edits) {
            return Failure{edits.reason()};
        }
        change = std::move(*edits);
    }
    change.userTexts = media::userTextsOf(source.tags);
    if (job.container != "mov") {
        // MP4 has a list of its own for these two, which ffmpeg fills.
        std::erase_if(change.userTexts, [](const UserText& item) {
            return item.type == atomType("\251nam") || item.type == atomType("\251cmt");
        });
    }
    change.keyTexts = media::keyTextsOf(source.tags);
    if (change.isEmpty()) {
        return {};
    }
    auto changed = changeMovieHeader(descriptor, change);
    // A clip without its tags is still the clip.
    return source.edits ? changed : Result<void>();
}

std::string unusablePictures(const media::SourceFacts& facts)
{
    const media::StreamFacts* const picture = facts.chosen(media::Kind::Picture);
    if (picture == nullptr) {
        return "it holds no pictures";
    }
    if (picture->encrypted) {
        return "its pictures are encrypted";
    }
    return picture->external ? "its pictures are in another file, which is not opened" : "";
}

} // namespace tavrix::front
