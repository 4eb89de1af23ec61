// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ordinaryuser.h"

#include <array>
#include <linux/capability.h>
#include <linux/securebits.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tavrix::test
{

namespace
{

constexpr std::uint64_t bit(int capability)
{
    return std::uint64_t{1} << static_cast<unsigned>(capability);
}

// What lets the superuser pass permissions by.
constexpr std::uint64_t overridingPrivileges =
    bit(CAP_DAC_OVERRIDE) | bit(CAP_DAC_READ_SEARCH) | bit(CAP_FOWNER) | bit(CAP_CHOWN);

using Privileges = std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3>;

bool readPrivileges(Privileges& privileges)
{
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    return syscall(SYS_capget, &header, privileges.data()) == 0;
}

std::uint64_t effective(const Privileges& privileges)
{
    return (std::uint64_t{privileges[1].effective} << 32U) | privileges[0].effective;
}

bool setEffective(std::uint64_t bits)
{
    Privileges privileges = {};
    if (!readPrivileges(privileges)) {
        return false;
    }
    privileges[0].effective = static_cast<std::uint32_t>(bits);
    privileges[1].effective = static_cast<std::uint32_t>(bits >> 32U);
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    return syscall(SYS_capset, &header, privileges.data()) == 0;
}

} // namespace

OrdinaryUser::OrdinaryUser()
{
    if (geteuid() != 0) {
        bound_ = true;
        return;
    }
    Privileges privileges = {};
    const int bits = prctl(PR_GET_SECUREBITS);
    // Children of user 0 would have every privilege again, and so would access().
    if (bits < 0 || !readPrivileges(privileges) ||
        prctl(PR_SET_SECUREBITS, bits | SECBIT_NOROOT | SECBIT_NO_SETUID_FIXUP) != 0) {
        return;
    }
    previousBits_ = bits;
    previousPrivileges_ = effective(privileges);
    bound_ = setEffective(previousPrivileges_ & ~overridingPrivileges);
}

OrdinaryUser::~OrdinaryUser()
{
    if (previousBits_ >= 0) {
        setEffective(previousPrivileges_);
        prctl(PR_SET_SECUREBITS, previousBits_);
    }
}

} // namespace tavrix::test
