// SPDX-License-Identifier: GPL-3.0-or-later
#include "pipeline/batchprogram.h"
#include "pipeline/clips.h"
#include "pipeline/words.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

using namespace tavrix::test;

namespace
{

// Names that a shell, a format string, an option parser or a pattern would take for something else.
QStringList hostileNames()
{
    return {text("two  blanks"),
            text("double\"quote"),
            text("single'quote"),
            text("back`touch pwned`tick"),
            text("$(touch pwned)"),
            text("percent %d %s %03d"),
            text("semi;touch pwned;colon"),
            text("amp & touch pwned"),
            text("-leading dash"),
            text("line\nfeed"),
            text("\xC3\xA9t\xC3\xA9 \xE2\x80\x9C\xC3\xA0 l\xE2\x80\x99\xC5\x93uvre\xE2\x80\x9D"),
            text("emoji \xF0\x9F\x8E\xA5"),
            text("back\\slash"),
            text("[bracket]*?"),
            text("#hash %41 a:b"),
            QString(246, QLatin1Char('n'))};
}

class HostileNames : public ::testing::TestWithParam<int>
{
};

TEST_P(HostileNames, areDataAsFilesAsFoldersAndAsDestination)
{
    TempFolder work;
    ClipRequest request = smallMotionJpegClip();
    // Format 0 makes so few bytes that a shorter clip would count as failed.
    request.seconds = GetParam() == 0 ? 7 : 2.5;
    ASSERT_TRUE(makeClip(work.path(text("seed.avi")), request));
    const QString sources = work.makeFolder(text("in $(touch pwned) 'a' \"b\" `c`; & -"));
    QStringList names = hostileNames();
    for (const QString& name : names) {
        ASSERT_EQ(::link(work.path(text("seed.avi")).toUtf8().constData(),
                         (sources + QLatin1Char('/') + name + text(".avi")).toUtf8().constData()),
                  0);
    }
    const QString destination = work.makeFolder(text("out $(touch pwned) 'a' \"b\" `c`; & %d"));
    const QByteArray before = *readBytes(work.path(text("seed.avi")));
    BatchProgram program;
    const BatchResult result =
        program.run({text("--format"), QString::number(GetParam()), text("--output"), destination, sources});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.outputs().size(), names.size());
    for (const QString& output : result.outputs()) {
        EXPECT_TRUE(QFileInfo::exists(output)) << output.toStdString();
    }
    EXPECT_EQ(filesBelow(destination).size(), names.size());
    EXPECT_EQ(filesBelow(sources).size(), names.size());
    EXPECT_EQ(*readBytes(work.path(text("seed.avi"))), before);
    for (const QString& folder : {work.path(), program.home(), QDir::currentPath(), QString(text("/"))}) {
        EXPECT_FALSE(QFileInfo::exists(folder + text("/pwned"))) << folder.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(EveryFormat, HostileNames, ::testing::Values(0, 1, 2, 3, 4, 5));

TEST(HostileNames, aClipThatIsNamedOnTheCommandLineMayBeginWithADash)
{
    TempFolder work;
    TempFolder destination;
    ASSERT_TRUE(makeClip(work.path(text("-i.avi")), smallMotionJpegClip()));
    BatchProgram program;
    const QString previous = QDir::currentPath();
    QDir::setCurrent(work.path());
    const BatchResult result = program.run({text("--output"), destination.path(), text("--"), text("-i.avi")});
    QDir::setCurrent(previous);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(filesBelow(destination.path()).size(), 1);
}

} // namespace
