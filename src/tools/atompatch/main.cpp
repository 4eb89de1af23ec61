// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/atompatch/atompatch.h"

#include <iostream>

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    return static_cast<int>(tavrix::runAtomPatch(arguments, std::cout, std::cerr));
}
