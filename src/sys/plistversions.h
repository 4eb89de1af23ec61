// SPDX-License-Identifier: GPL-3.0-or-later
// What differs between the versions of libplist, in one place. Who includes this links libplist.
#pragma once

#include "sys/plistcheck.h"

#include <cstdint>
#include <plist/plist.h>

namespace tavrix
{

// The node is null afterwards when the bytes are no property list, or none that is safe to read. The library's own
// guess of the form would take other texts for lists, too, since version 2.3.
inline void readPlist(const char* bytes, std::uint32_t size, plist_t* node)
{
    *node = nullptr;
    const Result<PlistForm> form = checkedPlist({bytes, size});
    if (form && *form == PlistForm::Binary) {
        plist_from_bin(bytes, size, node);
    } else if (form) {
        plist_from_xml(bytes, size, node);
    }
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
