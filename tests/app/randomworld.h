// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "controllertest.h"

#include <random>

namespace tavrix::test
{

constexpr int sourceCount = 5;

// Folders and source files that many lives of the controller share.
struct RandomWorld {
    RandomWorld();
    // Takes the outputs away and brings every source back.
    void renew() const;
    void bringBack(int count) const;
    [[nodiscard]] QString events() const { return folder.path(QStringLiteral("destination/Tavrix events")); }

    TempFolder folder;
    QStringList sources;
    QString fresh; // never dropped before the end
};

// 0 to below `limit`.
int randomBelow(std::mt19937& random, int limit);

// A source of any size, height, kind and state, mostly a good one.
FakeClip anyClip(std::mt19937& random);

// Preference keys that have no business after a whole batch.
QStringList strayKeys();

} // namespace tavrix::test
