// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <string>

// Progress lines on standard output: "Processing (42%)", each a whole line in a single write.
namespace tavrix::movencoder
{

[[nodiscard]] std::string progressLine(int percent);

class Progress
{
public:
    // Prints a line when half a second has passed since the last one; never more than 99 percent.
    void report(double fraction);
    // Prints the line of the end.
    static void complete();

private:
    static void print(int percent);

    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

} // namespace tavrix::movencoder
