// SPDX-License-Identifier: GPL-3.0-or-later
// The terms on which the program lets the tool give its output a name.
#include "tools/toolrun.h"

#include "sys/publication.h"

#include <filesystem>
#include <sys/stat.h>

namespace tavrix
{

namespace
{

namespace fs = std::filesystem;
using test::clip;
using test::contains;
using test::fileContents;
using test::runTool;
using test::ToolEnd;
using test::Words;
using test::writeFile;

class PublicationTerms : public test::ToolTest
{
protected:
    ToolEnd convert(const std::string& replaces, const std::string& place = "", const std::string& source = clip("mts"))
    {
        test::RunningTool::Options options;
        options.environment[publication::replacesVariable] = replaces;
        if (!place.empty()) {
            options.environment[publication::placeVariable] = place;
        }
        return runTool({"-i", source, "-vcodec", "copy", "-acodec", "copy", "-y", output()}, options);
    }
    std::string output() const { return name("out.mov"); }
    std::string identity() const { return publication::replacesText(identityOf(*followedStatus(output().c_str()))); }
};

TEST_F(PublicationTerms, FileThatStandsThereUnaskedStays)
{
    writeFile(output(), "appeared");
    const ToolEnd end = convert("nothing");
    EXPECT_EQ(end.code, 1);
    EXPECT_TRUE(contains(end.err, "tavrix-verdict: failed name-taken")) << end.err;
    EXPECT_EQ(fileContents(output()), "appeared");
    EXPECT_EQ(entries().size(), 1U);
}

TEST_F(PublicationTerms, FileThatWasAgreedOnIsReplacedAndNoOther)
{
    writeFile(output(), "older");
    const std::string older = identity();
    fs::rename(output(), name("kept"));
    writeFile(output(), "newer");
    EXPECT_EQ(convert(older).code, 1);
    EXPECT_EQ(fileContents(output()), "newer");
    fs::rename(name("kept"), output());
    EXPECT_EQ(convert(identity()).code, 0);
    EXPECT_GT(fs::file_size(output()), 200U * 1024);
}

TEST_F(PublicationTerms, OutputTakesThePlaceThatItIsGiven)
{
    writeFile(output(), "older");
    const ToolEnd end = convert("nothing", name("out_MASTER.mov"));
    EXPECT_EQ(end.code, 0) << end.err;
    EXPECT_TRUE(contains(end.err, "tavrix-verdict: whole\n")) << end.err;
    EXPECT_TRUE(contains(end.err, "to '" + output() + "'")) << "the transcript names what the arguments name";
    EXPECT_EQ(fileContents(output()), "older");
    const auto status = followedStatus(name("out_MASTER.mov").c_str());
    ASSERT_TRUE(status);
    EXPECT_TRUE(contains(end.err, publication::outputLine(*status) + '\n')) << end.err;
}

TEST_F(PublicationTerms, PipeUnderTheNameIsNotWrittenTo)
{
    ASSERT_EQ(::mkfifo(output().c_str(), 0600), 0);
    const ToolEnd end = convert("nothing");
    EXPECT_EQ(end.code, 1);
    EXPECT_TRUE(contains(end.err, "not a regular file")) << end.err;
    EXPECT_TRUE(fs::is_fifo(output()));
}

TEST_F(PublicationTerms, NothingIsToldOfFilesToWhoGivesNone)
{
    const ToolEnd end = runTool({"-i", clip("mts"), "-vcodec", "copy", "-acodec", "copy", "-y", output()});
    EXPECT_EQ(end.code, 0);
    EXPECT_FALSE(contains(end.err, "tavrix-output")) << end.err;
}

} // namespace

} // namespace tavrix
