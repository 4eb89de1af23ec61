// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/av/activelibrary.h"

#include "base/dialogue/replaceable.h"
#include "quicktime/av/avmedialibrary.h"

namespace tavrix
{

namespace
{

Replaceable<MediaLibrary>& library()
{
    static Replaceable<MediaLibrary> instance(
        [] { return std::unique_ptr<MediaLibrary>(std::make_unique<AvMediaLibrary>()); });
    return instance;
}

} // namespace

void setMediaLibrary(MediaLibrary* other)
{
    library().replace(other);
}

MediaLibrary& mediaLibrary()
{
    return library().inUse();
}

} // namespace tavrix
