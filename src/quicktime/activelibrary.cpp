#include "quicktime/activelibrary.h"

#include "quicktime/avmedialibrary.h"

namespace tavrix
{

namespace
{
MediaLibrary* replacedLibrary = nullptr;
}

void setMediaLibrary(MediaLibrary* library)
{
    replacedLibrary = library;
}

MediaLibrary& mediaLibrary()
{
    static AvMediaLibrary installed;
    return replacedLibrary != nullptr ? *replacedLibrary : installed;
}

} // namespace tavrix
