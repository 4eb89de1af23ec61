// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/publication.h"

#include <gtest/gtest.h>

namespace tavrix::publication
{

namespace
{

constexpr FileIdentity file = {2049, 77, 1234, 1700000000123456789};

TEST(Publication, TermsComeThroughTheEnvironment)
{
    const Terms one = readTerms(replacesText(file).c_str(), "/there/clip_MASTER.mov");
    EXPECT_TRUE(one.given);
    EXPECT_EQ(one.replaceable, file);
    EXPECT_EQ(one.place, "/there/clip_MASTER.mov");
    const Terms none = readTerms(replacesText(std::nullopt).c_str(), nullptr);
    EXPECT_TRUE(none.given);
    EXPECT_FALSE(none.replaceable);
    EXPECT_TRUE(none.place.empty());
    EXPECT_FALSE(readTerms(nullptr, nullptr).given);
}

TEST(Publication, OnlyTheFileThatWasAgreedOnMayGo)
{
    FileIdentity changed = file;
    changed.modified += 1;
    const Terms one = readTerms(replacesText(file).c_str(), nullptr);
    EXPECT_FALSE(forbid(one, file));
    EXPECT_TRUE(forbid(one, changed));
    EXPECT_TRUE(forbid(readTerms("nothing", nullptr), file));
    EXPECT_FALSE(forbid(Terms(), file)) << "the arguments decide";
}

TEST(Publication, TermsThatCannotBeReadLetNothingBeReplaced)
{
    for (const char* const text : {"", "1", "1:2:3", "1:2:3:4:5", "1:2:3:4 ", "a:2:3:4", "-1:2:3:4"}) {
        const Terms terms = readTerms(text, nullptr);
        EXPECT_TRUE(terms.given) << text;
        EXPECT_FALSE(terms.replaceable) << text;
    }
}

TEST(Publication, OutputIsToldByDeviceAndInode)
{
    struct stat status = {};
    status.st_dev = 2049;
    status.st_ino = 77;
    status.st_size = 5;
    const std::string line = outputLine(status);
    EXPECT_EQ(line, "tavrix-output: 2049:77");
    const auto found = parseOutputLine(line);
    ASSERT_TRUE(found);
    EXPECT_TRUE(sameFile(*found, file));
    for (const char* const text : {"", "tavrix-output: ", "tavrix-output: 1", "tavrix-output: 1:2:3", "x: 1:2"}) {
        EXPECT_FALSE(parseOutputLine(text)) << text;
    }
}

} // namespace

} // namespace tavrix::publication
