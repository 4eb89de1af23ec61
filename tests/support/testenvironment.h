// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>

#include <functional>
#include <memory>

namespace tavrix::test
{

using MakeApplication = std::function<std::unique_ptr<QCoreApplication>(int&, char**)>;

// Runs all tests in a home and temporary folder of their own, which are removed at the end. The application is made
// after the environment has been prepared. Answers the exit status for main.
int runTests(int argc, char** argv, const MakeApplication& makeApplication);

} // namespace tavrix::test
