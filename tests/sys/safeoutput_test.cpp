// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/safeoutput.h"

#include "support/ordinaryuser.h"
#include "support/temphome.h"
#include "support/waituntil.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrix
{

namespace
{

namespace fs = std::filesystem;
using Style = SafeOutput::Style;

class SafeOutputTest : public testing::TestWithParam<Style>
{
protected:
    std::string name(const std::string& file) const { return folder_.path().toStdString() + '/' + file; }
    static void write(const std::string& path, const std::string& text)
    {
        std::ofstream(path, std::ios::binary) << text;
    }
    static std::string read(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    int count() const
    {
        int entries = 0;
        for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder_.path().toStdString())) {
            ++entries;
        }
        return entries;
    }
    Result<SafeOutput> open(const std::string& file) const { return SafeOutput::open(name(file), GetParam()); }

    test::TempFolder folder_;
};

TEST_P(SafeOutputTest, AppearsOnlyWhenCommitted)
{
    auto output = open("clip.mp4");
    ASSERT_TRUE(output) << output.reason();
    write(output->path(), "picture");
    EXPECT_EQ(output->size(), 7);
    EXPECT_FALSE(fs::exists(name("clip.mp4")));
    ASSERT_TRUE(output->commit());
    EXPECT_EQ(read(name("clip.mp4")), "picture");
    EXPECT_EQ(count(), 1);
}

TEST_P(SafeOutputTest, ReplacesAnExistingFileAtOnce)
{
    write(name("clip.mp4"), "old");
    auto output = open("clip.mp4");
    ASSERT_TRUE(output) << output.reason();
    write(output->path(), "new");
    EXPECT_EQ(read(name("clip.mp4")), "old");
    ASSERT_TRUE(output->commit(SafeOutput::Durability::Unsynced));
    EXPECT_EQ(read(name("clip.mp4")), "new");
    EXPECT_EQ(count(), 1);
}

TEST_P(SafeOutputTest, KeepsWhatHasAppearedMeanwhileWhenToldTo)
{
    auto output = open("clip.mp4");
    ASSERT_TRUE(output) << output.reason();
    write(name("clip.mp4"), "another's");
    const auto published = output->commit(SafeOutput::Durability::Synced, SafeOutput::Existing::Kept);
    EXPECT_FALSE(published);
    EXPECT_EQ(published.reason(), "File exists");
    EXPECT_EQ(read(name("clip.mp4")), "another's");
    EXPECT_EQ(count(), 1);
    auto next = open("next.mp4");
    ASSERT_TRUE(next) << next.reason();
    EXPECT_TRUE(next->commit(SafeOutput::Durability::Synced, SafeOutput::Existing::Kept));
    EXPECT_EQ(count(), 2);
}

TEST_P(SafeOutputTest, ReplacesTheOneFileThatItMay)
{
    write(name("clip.mp4"), "old");
    const FileIdentity old = identityOf(*followedStatus(name("clip.mp4").c_str()));
    auto output = open("clip.mp4");
    ASSERT_TRUE(output) << output.reason();
    write(output->path(), "new");
    output->replaceOnly(old);
    ASSERT_TRUE(output->commit());
    EXPECT_EQ(read(name("clip.mp4")), "new");

    auto another = open("clip.mp4");
    ASSERT_TRUE(another) << another.reason();
    write(another->path(), "newer");
    another->replaceOnly(old);
    EXPECT_EQ(another->commit().reason(), "File exists");
    EXPECT_EQ(read(name("clip.mp4")), "new");

    fs::remove(name("clip.mp4"));
    auto last = open("clip.mp4");
    ASSERT_TRUE(last) << last.reason();
    last->replaceOnly(old);
    EXPECT_TRUE(last->commit()) << "nothing stands in the way any more";
    EXPECT_EQ(count(), 1);
}

TEST_P(SafeOutputTest, LeavesNothingWhenDropped)
{
    write(name("clip.mp4"), "old");
    {
        auto output = open("clip.mp4");
        ASSERT_TRUE(output) << output.reason();
        write(output->path(), "new");
    }
    EXPECT_EQ(read(name("clip.mp4")), "old");
    EXPECT_EQ(count(), 1);
}

TEST_P(SafeOutputTest, ReplacesALinkInsteadOfFollowingIt)
{
    write(name("target"), "kept");
    fs::create_symlink("target", name("clip.mp4"));
    auto output = open("clip.mp4");
    ASSERT_TRUE(output) << output.reason();
    write(output->path(), "new");
    ASSERT_TRUE(output->commit());
    EXPECT_EQ(read(name("target")), "kept");
    EXPECT_FALSE(fs::is_symlink(name("clip.mp4")));
    EXPECT_EQ(read(name("clip.mp4")), "new");
}

TEST_P(SafeOutputTest, LeavesALinkToAFolderAlone)
{
    fs::create_directory(name("folder"));
    fs::create_directory_symlink("folder", name("clip.mp4"));
    EXPECT_EQ(open("clip.mp4").reason(), "Is a directory");
    EXPECT_TRUE(fs::is_symlink(name("clip.mp4")));
    EXPECT_EQ(count(), 2);
}

TEST_P(SafeOutputTest, NeedsNotListItsFolder)
{
    const test::OrdinaryUser user;
    if (!user.isBound()) {
        GTEST_SKIP() << "this superuser may not lay down its privileges";
    }
    fs::create_directory(name("events"));
    fs::permissions(name("events"), fs::perms::owner_write | fs::perms::owner_exec);
    auto output = open("events/clip.mp4");
    fs::permissions(name("events"), fs::perms::owner_all);
    ASSERT_TRUE(output) << output.reason();
    ASSERT_EQ(::write(output->fd(), "x", 1), 1);
    ASSERT_TRUE(output->commit());
    EXPECT_EQ(read(name("events/clip.mp4")), "x");
}

TEST_P(SafeOutputTest, FollowsTheUsersFileMask)
{
    const mode_t before = umask(027);
    auto output = open("clip.mp4");
    umask(before);
    ASSERT_TRUE(output) << output.reason();
    ASSERT_TRUE(output->commit());
    struct stat info = {};
    ASSERT_EQ(stat(name("clip.mp4").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640U);
}

TEST_P(SafeOutputTest, SurvivesTheRenamingOfItsFolder)
{
    fs::create_directory(name("events"));
    auto output = open("events/clip.mp4");
    ASSERT_TRUE(output) << output.reason();
    ASSERT_EQ(::write(output->fd(), "x", 1), 1);
    fs::rename(name("events"), name("renamed"));
    ASSERT_TRUE(output->commit());
    EXPECT_EQ(read(name("renamed/clip.mp4")), "x");
}

TEST_P(SafeOutputTest, TellsWhyItCannotStart)
{
    EXPECT_EQ(open("no/such/folder/clip.mp4").reason(), "No such file or directory");
    fs::create_directory(name("folder.mp4"));
    EXPECT_EQ(open("folder.mp4").reason(), "Is a directory");
    EXPECT_EQ(open(std::string(256, 'x')).reason(), "File name too long");
    EXPECT_EQ(count(), 1);
}

TEST_P(SafeOutputTest, TakesTheLongestName)
{
    const std::string longest = std::string(251, 'x') + ".mp4";
    write(name(longest), "old");
    auto output = open(longest);
    ASSERT_TRUE(output) << output.reason();
    ASSERT_EQ(::write(output->fd(), "x", 1), 1);
    ASSERT_TRUE(output->commit());
    EXPECT_EQ(read(name(longest)), "x");
    EXPECT_EQ(count(), 1);
}

TEST_P(SafeOutputTest, IsInheritedByNobodyByChance)
{
    auto output = open("clip.mp4");
    ASSERT_TRUE(output) << output.reason();
    EXPECT_NE(fcntl(output->fd(), F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_GT(output->fd(), STDERR_FILENO);
}

TEST_P(SafeOutputTest, MovesWithItsOwner)
{
    auto output = open("clip.mp4");
    ASSERT_TRUE(output) << output.reason();
    SafeOutput moved = std::move(*output);
    {
        const SafeOutput gone = std::move(*output);
    }
    ASSERT_EQ(::write(moved.fd(), "x", 1), 1);
    ASSERT_TRUE(moved.commit());
    EXPECT_EQ(read(name("clip.mp4")), "x");
}

std::string styleName(const testing::TestParamInfo<Style>& row)
{
    constexpr std::array names = {"Anonymous", "Hidden", "Brief"};
    return names.at(static_cast<std::size_t>(row.param));
}

INSTANTIATE_TEST_SUITE_P(Styles, SafeOutputTest, testing::Values(Style::Anonymous, Style::Hidden, Style::Brief),
                         styleName);

class HiddenOutput : public SafeOutputTest
{
};

TEST_P(HiddenOutput, KeepsTheExtensionForItsWriter)
{
    auto output = open("clip.mp4");
    ASSERT_TRUE(output) << output.reason();
    const fs::path path(output->path());
    EXPECT_EQ(path.extension(), ".mp4");
    EXPECT_EQ(path.filename().string().front(), '.');
}

TEST_P(HiddenOutput, RemovesThoseOfKilledWritersOnly)
{
    auto running = open("first.mp4");
    ASSERT_TRUE(running) << running.reason();
    write(name(".tavrix-part-0123456789abcdef.mp4"), "left by a kill");
    write(name(".tavrix-other"), "not one of them");
    auto next = open("second.mp4");
    ASSERT_TRUE(next) << next.reason();
    EXPECT_FALSE(fs::exists(name(".tavrix-part-0123456789abcdef.mp4")));
    EXPECT_TRUE(fs::exists(name(".tavrix-other")));
    EXPECT_TRUE(fs::exists(running->path()));
}

// Starts an output in a process of its own, which then does what `act` says and waits to be killed.
template <class Act> void runAndKill(const std::string& path, Act act)
{
    std::array<int, 2> ends = {-1, -1};
    ASSERT_EQ(pipe(ends.data()), 0);
    const pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
        close(ends[0]);
        auto output = SafeOutput::open(path, Style::Hidden);
        const bool done = output && ::write(output->fd(), "x", 1) == 1 && act(*output);
        [[maybe_unused]] const ssize_t told = ::write(ends[1], done ? "y" : "n", 1);
        while (true) {
            pause();
        }
    }
    close(ends[1]);
    char answer = 0;
    EXPECT_EQ(::read(ends[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    kill(writer, SIGKILL);
    EXPECT_EQ(waitpid(writer, nullptr, 0), writer);
    // The guard has a copy of the pipe's end until it stands guard.
    EXPECT_EQ(::read(ends[0], &answer, 1), 0);
    close(ends[0]);
}

TEST_P(HiddenOutput, GoesWithItsWriterEvenWhenThatIsKilled)
{
    runAndKill(name("clip.mp4"), [](SafeOutput&) { return true; });
    EXPECT_TRUE(test::waitUntil([this] { return count() == 0; }));
}

TEST_P(HiddenOutput, StaysWhenItsWriterIsKilledAfterTheCommit)
{
    runAndKill(name("clip.mp4"), [](SafeOutput& output) { return output.commit().hasValue(); });
    EXPECT_EQ(read(name("clip.mp4")), "x");
    EXPECT_EQ(count(), 1);
}

INSTANTIATE_TEST_SUITE_P(Style, HiddenOutput, testing::Values(Style::Hidden));

} // namespace

} // namespace tavrix
