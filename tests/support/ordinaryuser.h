// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace tavrix::test
{

// While it lives, permissions bind the superuser in this thread, and in children started from it, as they bind every
// other user. What the superuser owns stays its own. Nothing changes for other users.
class OrdinaryUser
{
public:
    OrdinaryUser();
    ~OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

    // False for a superuser who may not lay down its privileges, in some containers.
    [[nodiscard]] bool isBound() const { return bound_; }

private:
    bool bound_ = false;
    int previousBits_ = -1; // nothing to take back
    std::uint64_t previousPrivileges_ = 0;
};

} // namespace tavrix::test
