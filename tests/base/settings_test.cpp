// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/store/settings.h"

#include "support/qtprinters.h"

namespace tavrix
{
namespace
{

using test::text;

TEST(Settings, TheTemporaryFolderIsUnsetUntilItIsSet)
{
    setTMPFOLDER(QString());
    EXPECT_TEXT(getTMPFOLDER(), text("/private/tmp/Tavrix"));
    setTMPFOLDER(text("/tmp/own/"));
    EXPECT_TEXT(getTMPFOLDER(), text("/tmp/own/"));
    setTMPFOLDER(text(""));
    EXPECT_TEXT(getTMPFOLDER(), text(""));
    setTMPFOLDER(QString());
    EXPECT_TEXT(getTMPFOLDER(), text("/private/tmp/Tavrix"));
}

TEST(Settings, DebugIsOffAtStart)
{
    EXPECT_EQ(getDEBUG(), 0);
    EXPECT_EQ(getDEBUGDEV(), 0);
    setDEBUG(1);
    EXPECT_EQ(getDEBUG(), 1);
    EXPECT_EQ(getDEBUGDEV(), 0);
    setDEBUG(0);
    EXPECT_EQ(getDEBUG(), 0);
}

TEST(Settings, EachFlagHasAValueOfItsOwn)
{
    setWMV(1);
    setDIVX(2);
    setAIC(3);
    setPRORES(4);
    setMPEG2(5);
    setOPENPERM(1);
    EXPECT_EQ(getWMV(), 1);
    EXPECT_EQ(getDIVX(), 2);
    EXPECT_EQ(getAIC(), 3);
    EXPECT_EQ(getPRORES(), 4);
    EXPECT_EQ(getMPEG2(), 5);
    EXPECT_EQ(getOPENPERM(), 1);
    setOPENPERM(0);
    EXPECT_EQ(getOPENPERM(), 0);
    for (const auto set : {setWMV, setDIVX, setAIC, setPRORES, setMPEG2}) {
        set(0);
    }
}

} // namespace
} // namespace tavrix
