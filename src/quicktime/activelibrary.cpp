#include "quicktime/activelibrary.h"

#include "base/replaceable.h"
#include "quicktime/avmedialibrary.h"

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
