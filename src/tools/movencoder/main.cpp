// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/movencoder/movencoder.h"

int main(int argc, char** argv)
{
    return tavrix::movencoder::run(std::vector<std::string>(argc > 0 ? argv + 1 : argv, argv + argc));
}
