// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/home.h"
#include "sys/secondpass.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>

namespace tavrix
{

namespace
{

TEST(SecondPass, TheStoreIsNamedByTheIdentifierElseByTheName)
{
    EXPECT_EQ(secondpass::storePath("/h", "org.x", "X"), "/h/Library/Preferences/org.x.plist");
    EXPECT_EQ(secondpass::storePath("/h", "", "X"), "/h/Library/Preferences/X.plist");
    EXPECT_EQ(secondpass::storePath("/h", "", ""), "/h/Library/Preferences/Tavrix.plist");
}

TEST(Home, IsTheEnvironmentsWhenAbsoluteElseTheDatabases)
{
    const char* before = std::getenv("HOME");
    const std::optional<std::string> kept = before ? std::optional<std::string>(before) : std::nullopt;
    setenv("HOME", "/some/home", 1);
    EXPECT_EQ(ownHome(), "/some/home");
    setenv("HOME", "relative", 1);
    EXPECT_EQ(ownHome(), homeOfUser(""));
    unsetenv("HOME");
    EXPECT_EQ(ownHome(), homeOfUser(""));
    if (kept) {
        setenv("HOME", kept->c_str(), 1);
    }
    EXPECT_EQ(homeOfUser("root"), "/root");
    EXPECT_EQ(homeOfUser("no-such-user"), "");
}

} // namespace

} // namespace tavrix
