// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/testenvironment.h"

int main(int argc, char** argv)
{
    return tavrix::test::runTests(
        argc, argv, [](int& count, char** values) { return std::make_unique<QCoreApplication>(count, values); });
}
