#include "tools/common/safeoutput.h"

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
    std::optional<SafeOutput> open(const std::string& file) { return SafeOutput::open(name(file), error_, GetParam()); }

    test::TempFolder folder_;
    std::string error_;
};

TEST_P(SafeOutputTest, AppearsOnlyWhenCommitted)
{
    auto output = open("clip.mp4");
    ASSERT_TRUE(output.has_value()) << error_;
    write(output->path(), "picture");
    EXPECT_EQ(output->size(), 7);
    EXPECT_FALSE(fs::exists(name("clip.mp4")));
    ASSERT_TRUE(output->commit(error_)) << error_;
    EXPECT_EQ(read(name("clip.mp4")), "picture");
    EXPECT_EQ(count(), 1);
}

TEST_P(SafeOutputTest, ReplacesAnExistingFileAtOnce)
{
    write(name("clip.mp4"), "old");
    auto output = open("clip.mp4");
    ASSERT_TRUE(output.has_value()) << error_;
    write(output->path(), "new");
    EXPECT_EQ(read(name("clip.mp4")), "old");
    ASSERT_TRUE(output->commit(error_, SafeOutput::Durability::Unsynced)) << error_;
    EXPECT_EQ(read(name("clip.mp4")), "new");
    EXPECT_EQ(count(), 1);
}

TEST_P(SafeOutputTest, KeepsWhatHasAppearedMeanwhileWhenToldTo)
{
    auto output = open("clip.mp4");
    ASSERT_TRUE(output.has_value()) << error_;
    write(name("clip.mp4"), "another's");
    EXPECT_FALSE(output->commit(error_, SafeOutput::Durability::Synced, SafeOutput::Existing::Kept));
    EXPECT_EQ(error_, "File exists");
    EXPECT_EQ(read(name("clip.mp4")), "another's");
    EXPECT_EQ(count(), 1);
    auto next = open("next.mp4");
    ASSERT_TRUE(next.has_value()) << error_;
    EXPECT_TRUE(next->commit(error_, SafeOutput::Durability::Synced, SafeOutput::Existing::Kept)) << error_;
    EXPECT_EQ(count(), 2);
}

TEST_P(SafeOutputTest, LeavesNothingWhenDropped)
{
    write(name("clip.mp4"), "old");
    {
        auto output = open("clip.mp4");
        ASSERT_TRUE(output.has_value()) << error_;
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
    ASSERT_TRUE(output.has_value()) << error_;
    write(output->path(), "new");
    ASSERT_TRUE(output->commit(error_)) << error_;
    EXPECT_EQ(read(name("target")), "kept");
    EXPECT_FALSE(fs::is_symlink(name("clip.mp4")));
    EXPECT_EQ(read(name("clip.mp4")), "new");
}

TEST_P(SafeOutputTest, LeavesALinkToAFolderAlone)
{
    fs::create_directory(name("folder"));
    fs::create_directory_symlink("folder", name("clip.mp4"));
    EXPECT_FALSE(open("clip.mp4").has_value());
    EXPECT_EQ(error_, "Is a directory");
    EXPECT_TRUE(fs::is_symlink(name("clip.mp4")));
    EXPECT_EQ(count(), 2);
}

TEST_P(SafeOutputTest, NeedsNotListItsFolder)
{
    if (geteuid() == 0) {
        GTEST_SKIP() << "permissions do not bind this user";
    }
    fs::create_directory(name("events"));
    fs::permissions(name("events"), fs::perms::owner_write | fs::perms::owner_exec);
    auto output = open("events/clip.mp4");
    fs::permissions(name("events"), fs::perms::owner_all);
    ASSERT_TRUE(output.has_value()) << error_;
    ASSERT_EQ(::write(output->fd(), "x", 1), 1);
    ASSERT_TRUE(output->commit(error_)) << error_;
    EXPECT_EQ(read(name("events/clip.mp4")), "x");
}

TEST_P(SafeOutputTest, FollowsTheUsersFileMask)
{
    const mode_t before = umask(027);
    auto output = open("clip.mp4");
    umask(before);
    ASSERT_TRUE(output.has_value()) << error_;
    ASSERT_TRUE(output->commit(error_)) << error_;
    struct stat info = {};
    ASSERT_EQ(stat(name("clip.mp4").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640U);
}

TEST_P(SafeOutputTest, SurvivesTheRenamingOfItsFolder)
{
    fs::create_directory(name("events"));
    auto output = open("events/clip.mp4");
    ASSERT_TRUE(output.has_value()) << error_;
    ASSERT_EQ(::write(output->fd(), "x", 1), 1);
    fs::rename(name("events"), name("renamed"));
    ASSERT_TRUE(output->commit(error_)) << error_;
    EXPECT_EQ(read(name("renamed/clip.mp4")), "x");
}

TEST_P(SafeOutputTest, TellsWhyItCannotStart)
{
    EXPECT_FALSE(open("no/such/folder/clip.mp4").has_value());
    EXPECT_EQ(error_, "No such file or directory");
    fs::create_directory(name("folder.mp4"));
    EXPECT_FALSE(open("folder.mp4").has_value());
    EXPECT_EQ(error_, "Is a directory");
    EXPECT_FALSE(open(std::string(256, 'x')).has_value());
    EXPECT_EQ(error_, "File name too long");
    EXPECT_EQ(count(), 1);
}

TEST_P(SafeOutputTest, TakesTheLongestName)
{
    const std::string longest = std::string(251, 'x') + ".mp4";
    write(name(longest), "old");
    auto output = open(longest);
    ASSERT_TRUE(output.has_value()) << error_;
    ASSERT_EQ(::write(output->fd(), "x", 1), 1);
    ASSERT_TRUE(output->commit(error_)) << error_;
    EXPECT_EQ(read(name(longest)), "x");
    EXPECT_EQ(count(), 1);
}

TEST_P(SafeOutputTest, IsInheritedByNobodyByChance)
{
    auto output = open("clip.mp4");
    ASSERT_TRUE(output.has_value()) << error_;
    EXPECT_NE(fcntl(output->fd(), F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_GT(output->fd(), STDERR_FILENO);
}

TEST_P(SafeOutputTest, MovesWithItsOwner)
{
    auto output = open("clip.mp4");
    ASSERT_TRUE(output.has_value()) << error_;
    SafeOutput moved = std::move(*output);
    output.reset();
    ASSERT_EQ(::write(moved.fd(), "x", 1), 1);
    ASSERT_TRUE(moved.commit(error_)) << error_;
    EXPECT_EQ(read(name("clip.mp4")), "x");
}

INSTANTIATE_TEST_SUITE_P(Styles, SafeOutputTest, testing::Values(Style::Anonymous, Style::Hidden),
                         [](const auto& row) { return row.param == Style::Anonymous ? "Anonymous" : "Hidden"; });

class HiddenOutput : public SafeOutputTest
{
};

TEST_P(HiddenOutput, KeepsTheExtensionForItsWriter)
{
    auto output = open("clip.mp4");
    ASSERT_TRUE(output.has_value()) << error_;
    const fs::path path(output->path());
    EXPECT_EQ(path.extension(), ".mp4");
    EXPECT_EQ(path.filename().string().front(), '.');
}

TEST_P(HiddenOutput, RemovesThoseOfKilledWritersOnly)
{
    auto running = open("first.mp4");
    ASSERT_TRUE(running.has_value()) << error_;
    write(name(".tavrix-part-0123456789abcdef.mp4"), "left by a kill");
    write(name(".tavrix-other"), "not one of them");
    auto next = open("second.mp4");
    ASSERT_TRUE(next.has_value()) << error_;
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
        std::string error;
        auto output = SafeOutput::open(path, error, Style::Hidden);
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
    runAndKill(name("clip.mp4"), [](SafeOutput& output) {
        std::string error;
        return output.commit(error);
    });
    EXPECT_EQ(read(name("clip.mp4")), "x");
    EXPECT_EQ(count(), 1);
}

INSTANTIATE_TEST_SUITE_P(Style, HiddenOutput, testing::Values(Style::Hidden));

} // namespace

} // namespace tavrix
