// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/moviemetadata.h"

#include <string_view>

extern "C" {
#include <libavutil/dict.h>
}

namespace tavrix::movencoder
{

namespace
{

constexpr const char* softwareKey = "com.apple.quicktime.software";

} // namespace

void copyMetadata(AVDictionary*& to, const AVDictionary* from)
{
    av_dict_copy(&to, from, 0);
    for (const char* key : {"major_brand", "minor_version", "compatible_brands", "vendor_id"}) {
        av_dict_set(&to, key, nullptr, 0);
    }
    // The FFmpeg libraries call the software of a movie's user data so, and write their own name there: a camera's goes
    // to the newer key.
    const AVDictionaryEntry* software = av_dict_get(to, "encoder", nullptr, 0);
    if (software != nullptr && !std::string_view(software->value).starts_with("Lav")) {
        av_dict_set(&to, softwareKey, software->value, AV_DICT_DONT_OVERWRITE);
    }
    av_dict_set(&to, "encoder", nullptr, 0);
}

bool hasQuickTimeKeys(const AVDictionary* metadata)
{
    const AVDictionaryEntry* entry = nullptr;
    while ((entry = av_dict_get(metadata, "", entry, AV_DICT_IGNORE_SUFFIX)) != nullptr) {
        if (std::string_view(entry->key).starts_with("com.")) {
            return true;
        }
    }
    return false;
}

} // namespace tavrix::movencoder
