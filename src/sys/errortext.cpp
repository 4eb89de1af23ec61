// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/errortext.h"

#include <system_error>

namespace tavrix
{

std::string errorText(int number)
{
    return std::generic_category().message(number);
}

} // namespace tavrix
