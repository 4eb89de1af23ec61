// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/numericlocale.h"

namespace tavrix
{

locale_t numericLocale()
{
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

NumericLocaleScope::NumericLocaleScope() : previous_(uselocale(numericLocale())) {}

NumericLocaleScope::~NumericLocaleScope()
{
    uselocale(previous_);
}

} // namespace tavrix
