// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The "C" locale for reading and printing numbers, whatever the environment asks for.

#include <clocale>

namespace tavrix
{

[[nodiscard]] locale_t numericLocale();

// Makes the calling thread print and read numbers as C does while it lives.
class NumericLocaleScope
{
public:
    NumericLocaleScope();
    ~NumericLocaleScope();
    NumericLocaleScope(const NumericLocaleScope&) = delete;
    NumericLocaleScope& operator=(const NumericLocaleScope&) = delete;

private:
    locale_t previous_;
};

} // namespace tavrix
