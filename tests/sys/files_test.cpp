// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/temphome.h"
#include "sys/atomicfile.h"
#include "sys/fileidentity.h"
#include "sys/foldernames.h"
#include "sys/transfer.h"

#include <algorithm>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace tavrix
{

namespace
{

class Files : public testing::Test
{
protected:
    std::string name(const char* file) const { return folder_.path(QLatin1String(file)).toStdString(); }
    std::string make(const char* file, const char* text) const
    {
        return folder_.makeFile(QLatin1String(file), text).toStdString();
    }
    static FileIdentity identity(const std::string& path) { return identityOf(followedStatus(path.c_str()).value()); }

    test::TempFolder folder_;
};

using FileIdentityTest = Files;

TEST_F(FileIdentityTest, IsTheFileAndNotItsName)
{
    const std::string file = make("file", "a");
    const std::string other = make("other", "a");
    const std::string link = name("link");
    const std::string hard = name("hard");
    ASSERT_EQ(symlink(file.c_str(), link.c_str()), 0);
    ASSERT_EQ(::link(file.c_str(), hard.c_str()), 0);
    EXPECT_EQ(identity(file), identity(link));
    EXPECT_EQ(identity(file), identity(hard));
    EXPECT_NE(identity(file), identity(other));
    EXPECT_TRUE(sameFile(file.c_str(), link.c_str()));
    EXPECT_FALSE(sameFile(file.c_str(), other.c_str()));
    EXPECT_FALSE(sameFile(linkStatus(link.c_str()).value(), linkStatus(file.c_str()).value()));
}

TEST_F(FileIdentityTest, AnotherSizeOrTimeIsAnotherContentOfTheSameFile)
{
    const std::string file = make("file", "a");
    const FileIdentity before = identity(file);
    EXPECT_EQ(before.size, 1U);
    make("file", "ab");
    EXPECT_TRUE(sameFile(before, identity(file)));
    EXPECT_NE(before, identity(file));
    FileIdentity later = before;
    later.modified += 1;
    EXPECT_NE(before, later);
}

TEST_F(FileIdentityTest, NothingIsNoFile)
{
    EXPECT_FALSE(followedStatus(nullptr));
    EXPECT_FALSE(followedStatus(""));
    EXPECT_FALSE(linkStatus(nullptr));
    EXPECT_FALSE(sameFile("", ""));
    EXPECT_FALSE(sameFile(nullptr, nullptr));
}

using FolderNames = Files;

TEST_F(FolderNames, AreReadFromTheBeginningEachTime)
{
    make("a", "");
    make(".hidden", "");
    const Descriptor folder = openFile(folder_.path().toStdString().c_str(), O_RDONLY | O_DIRECTORY);
    for (int time = 0; time < 2; ++time) {
        auto names = namesIn(folder).value();
        std::ranges::sort(names);
        EXPECT_EQ(names, (std::vector<std::string>{".hidden", "a"}));
    }
    EXPECT_FALSE(namesIn(openFile(name("a").c_str(), O_RDONLY)));
    EXPECT_FALSE(namesIn(Descriptor()));
}

using ReplaceFile = Files;

TEST_F(ReplaceFile, MakesAndReplacesWithItsMode)
{
    const std::string file = name("file");
    ASSERT_TRUE(replaceFile(file, "one", 0600));
    EXPECT_EQ(*readFile<std::string>(file.c_str(), 10), "one");
    ASSERT_EQ(chmod(file.c_str(), 0644), 0);
    ASSERT_TRUE(replaceFile(file, std::string_view("t\0o", 3), 0600));
    EXPECT_EQ(*readFile<std::string>(file.c_str(), 10), std::string("t\0o", 3));
    EXPECT_EQ(followedStatus(file.c_str())->st_mode & 07777, 0600U);
    const Descriptor folder = openFile(folder_.path().toStdString().c_str(), O_RDONLY | O_DIRECTORY);
    EXPECT_EQ(namesIn(folder)->size(), 1U);
}

TEST_F(ReplaceFile, RefusesWhatIsNoRegularFile)
{
    const std::string target = make("target", "kept");
    const std::string link = name("link");
    ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0);
    EXPECT_EQ(replaceFile(link, "new", 0600).reason(), "File exists");
    EXPECT_EQ(replaceFile(folder_.path().toStdString(), "new", 0600).reason(), "File exists");
    EXPECT_EQ(replaceFile(name("no/such/folder"), "new", 0600).reason(), "No such file or directory");
    EXPECT_EQ(*readFile<std::string>(target.c_str(), 10), "kept");
}

} // namespace

} // namespace tavrix
