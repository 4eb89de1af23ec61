// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/temphome.h"

#include <memory>

namespace tavrix::test
{

// A home, a trash and a temporary folder in memory while it lives: a test that makes and deletes files by the ten
// thousand would otherwise wait for the disk most of its time. Where the system offers no such place they stay where
// they are. Preferences are read afresh at both ends.
class MemoryHome
{
public:
    MemoryHome();
    ~MemoryHome();
    MemoryHome(const MemoryHome&) = delete;
    MemoryHome& operator=(const MemoryHome&) = delete;

private:
    struct Places;
    std::unique_ptr<Places> places_;
};

} // namespace tavrix::test
