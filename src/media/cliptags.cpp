// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/cliptags.h"

#include <initializer_list>

namespace tavrix::media
{

namespace
{

// The first of these keys that has a value.
std::string valueOf(const AVDictionary* tags, std::initializer_list<const char*> keys)
{
    for (const char* key : keys) {
        const AVDictionaryEntry* const entry = av_dict_get(tags, key, nullptr, 0);
        if (entry != nullptr && entry->value[0] != '\0') {
            return entry->value;
        }
    }
    return {};
}

template <typename Item> void add(std::vector<Item>& list, decltype(Item().text) text, const auto& name)
{
    if (!text.empty()) {
        list.push_back({name, std::move(text)});
    }
}

} // namespace

ClipTags clipTagsOf(const MediaInput& input)
{
    const AVFormatContext& context = *input.context();
    const AVDictionary* const tags = context.metadata;
    ClipTags clip;
    clip.createdUtc = valueOf(tags, {"creation_time"});
    clip.createdHere = valueOf(tags, {"com.apple.quicktime.creationdate"});
    clip.title = valueOf(tags, {"com.apple.quicktime.title", "title"});
    clip.comment =
        valueOf(tags, {"com.apple.quicktime.comment", "comment", "com.apple.quicktime.description", "description"});
    clip.make = valueOf(tags, {"com.apple.quicktime.make", "make", "com.android.manufacturer"});
    clip.model = valueOf(tags, {"com.apple.quicktime.model", "model", "com.android.model"});
    clip.software = valueOf(tags, {"com.apple.quicktime.software", "software"});
    if (clip.software.empty() && input.isContainer("avi")) {
        clip.software = valueOf(tags, {"encoder"}); // cameras sign their files there
    }
    clip.place = valueOf(tags, {"com.apple.quicktime.location.ISO6709", "location", "location-eng"});
    for (unsigned i = 0; i < context.nb_streams; ++i) {
        clip.hasTimeCode = clip.hasTimeCode || !valueOf(context.streams[i]->metadata, {"timecode"}).empty();
    }
    return clip;
}

std::vector<UserText> userTextsOf(const ClipTags& tags)
{
    std::vector<UserText> texts;
    add(texts, tags.make, atomType("\251mak"));
    add(texts, tags.model, atomType("\251mod"));
    add(texts, tags.software, atomType("\251swr"));
    add(texts, tags.place, atomType("\251xyz"));
    add(texts, tags.title, atomType("\251nam"));
    add(texts, tags.comment, atomType("\251cmt"));
    add(texts, tags.createdHere, atomType("\251day"));
    return texts;
}

std::vector<KeyText> keyTextsOf(const ClipTags& tags)
{
    std::vector<KeyText> texts;
    add(texts, tags.createdHere, "com.apple.quicktime.creationdate");
    add(texts, tags.make, "com.apple.quicktime.make");
    add(texts, tags.model, "com.apple.quicktime.model");
    add(texts, tags.software, "com.apple.quicktime.software");
    add(texts, tags.place, "com.apple.quicktime.location.ISO6709");
    add(texts, tags.title, "com.apple.quicktime.title");
    add(texts, tags.comment, "com.apple.quicktime.comment");
    return texts;
}

} // namespace tavrix::media
