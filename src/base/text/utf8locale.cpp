// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/utf8locale.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>

namespace tavrix
{

void useUtf8Locale()
{
    const bool known = std::setlocale(LC_CTYPE, "") != nullptr;
    if (known && std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0) {
        return;
    }
    // LC_ALL outweighs every other one, LC_CTYPE the language.
    const char* all = std::getenv("LC_ALL");
    setenv(all != nullptr && *all != '\0' ? "LC_ALL" : "LC_CTYPE", "C.UTF-8", 1);
}

} // namespace tavrix
