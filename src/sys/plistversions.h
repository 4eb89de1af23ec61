// What differs between the versions of libplist, in one place. Who includes this links libplist.
#pragma once

#include <cstdint>
#include <plist/plist.h>

namespace tavrix
{

// The node is null afterwards when the bytes are no property list.
inline void readPlist(const char* bytes, std::uint32_t size, plist_t* node)
{
#ifdef PLIST_UINT // a second name since libplist 2.3, which gives the format too
    plist_from_memory(bytes, size, node, nullptr);
#else
    plist_from_memory(bytes, size, node);
#endif
}

inline void freePlistText(char* text)
{
#ifdef PLIST_UINT
    plist_mem_free(text);
#else
    plist_to_xml_free(text);
#endif
}

} // namespace tavrix
