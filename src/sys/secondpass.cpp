// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/secondpass.h"

namespace tavrix::secondpass
{

std::string storePath(const std::string& home, std::string_view identifier, std::string_view name)
{
    std::string path = home + "/Library/Preferences/";
    path += identifier.empty() ? (name.empty() ? std::string_view("Tavrix") : name) : identifier;
    return path + ".plist";
}

} // namespace tavrix::secondpass
