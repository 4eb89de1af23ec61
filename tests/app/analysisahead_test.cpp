// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/analysisahead.h"
#include "base/store/settings.h"
#include "controllertest.h"
#include "support/waituntil.h"
#include "testresources.h"

#include <QDir>
#include <QFile>
#include <QThread>

#include <sys/wait.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

// Notes the source, and hangs.
const char* const hangingTool = R"(
echo "$4" >> "$0.said"
exec tail -f /dev/null
)";

class LookAhead : public ControllerTest
{
protected:
    LookAhead() : tool(resources.makeTool(QStringLiteral("ffmpeg"), hangingTool)) {}

    QStringList said() const
    {
        const QByteArray text = readBytes(tool + QStringLiteral(".said")).value_or(QByteArray());
        QStringList sources = QString::fromUtf8(text).split(u'\n', Qt::SkipEmptyParts);
        sources.sort();
        return sources;
    }

    static bool hasChild() { return ::waitpid(-1, nullptr, WNOHANG) != -1; }

    const TestResources resources;
    const QString tool;
    const int width = AnalysisAhead::width(QThread::idealThreadCount());
};

} // namespace

TEST_F(LookAhead, WidthLeavesAProcessorThatIsAlone)
{
    EXPECT_EQ(AnalysisAhead::width(0), 0);
    EXPECT_EQ(AnalysisAhead::width(1), 0);
    EXPECT_EQ(AnalysisAhead::width(2), 2);
    EXPECT_EQ(AnalysisAhead::width(4), 4);
    EXPECT_EQ(AnalysisAhead::width(64), 4);
    EXPECT_EQ(AnalysisAhead::reach(), width == 0 ? 0 : width + 1);
}

TEST_F(LookAhead, EachClipHasOneLookAndTheEndLeavesNothing)
{
    if (width == 0) {
        GTEST_SKIP() << "one processor";
    }
    const QStringList sources = {QStringLiteral("/clips/a.mts"), QStringLiteral("/clips/b.mts")};
    AnalysisAhead ahead;
    ahead.lookAt(sources);
    ahead.lookAt(sources);
    EXPECT_TRUE(waitUntil([&] { return said() == sources; }));
    EXPECT_TRUE(hasChild());
    ahead.end();
    EXPECT_TRUE(waitUntil([] { return !hasChild(); }));
    EXPECT_TEXTS(said(), sources);
}

TEST_F(LookAhead, EndRemovesWhatNobodyHasAskedFor)
{
    const QDir temporary(getTMPFOLDER());
    for (const char* name : {"kept-ahead-12", "kept-ahead-12.making", "kept-ahead-unused.yuv", "kept-banner"}) {
        QFile file(temporary.filePath(QLatin1String(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    AnalysisAhead().end();
    EXPECT_TEXTS(temporary.entryList({QStringLiteral("kept-*")}, QDir::Files),
                 QStringList(QStringLiteral("kept-banner")));
}

TEST_F(LookAhead, PretendedToolsAreLeftAlone)
{
    addRows(makeClips(3));
    EXPECT_TEXTS(said(), QStringList());
    EXPECT_FALSE(hasChild());
}
