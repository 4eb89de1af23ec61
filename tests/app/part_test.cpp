// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

#include "app/partfile.h"
#include "base/store/settings.h"

#include <QCoreApplication>
#include <QDir>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

// A row of which only a part is converted.
class PartRow : public ControllerTest
{
protected:
    void begin(int out, const ClipPart& part = {2, 12.5})
    {
        setAIC(1);
        setPRORES(1);
        source = makeClips(1).first();
        addRows({source});
        rows().setOut(0, out);
        rows().setPart(0, part);
        pressStart();
    }

    [[nodiscard]] static bool partLies() { return QDir(getTMPFOLDER() + QStringLiteral("part")).exists(); }

    QString source;
};

TEST_F(PartRow, IsMadeFirstAndThenEncoded)
{
    begin(0);
    const FakeTools::Launch part = tools.current(ToolKind::Part);
    ASSERT_TRUE(part.launcher);
    EXPECT_TEXTS(part.arguments,
                 QStringList({QCoreApplication::applicationDirPath() + QStringLiteral("/tavrix-inspect"),
                              QStringLiteral("--export"), QStringLiteral("mov"), QStringLiteral("--progress"),
                              QStringLiteral("--from"), QStringLiteral("2.000000"), QStringLiteral("--to"),
                              QStringLiteral("12.500000"), QStringLiteral("--output"), PartFile::path(),
                              QStringLiteral("--"), source}));
    part.launcher->write(QStringLiteral("Processing (40%)\n"));
    EXPECT_TEXT(model().mainEncProgressPercentStr.stringValue(), QStringLiteral("40 %"));
    ASSERT_TRUE(tools.finish(ToolKind::Part));
    const FakeTools::Launch encode = tools.current(ToolKind::Encode);
    ASSERT_TRUE(encode.launcher);
    EXPECT_TEXT(encode.source(), PartFile::path());
    // The bar counts the seconds of the part.
    EXPECT_DOUBLE_EQ(model().encTaskProgress.maxValue(), 10.5);
    EXPECT_TRUE(partLies());
    ASSERT_TRUE(tools.finish(ToolKind::Encode));
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_FALSE(partLies());
    EXPECT_TRUE(QFile::exists(source));
    EXPECT_TRUE(resumeLog().contains(QStringLiteral("part                : 0:02 - 0:12.5\n")));
    expectIdle();
}

TEST_F(PartRow, TakesTheNameOfItsClip)
{
    begin(3);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXT(rows().row(0).output, outputOf(source));
}

TEST_F(PartRow, HasThreePassesInFormatsOfTwo)
{
    QList<QPair<int, int>> steps;
    QObject::connect(controller.get(), &appDelegate::rowStep, controller.get(),
                     [&steps](int, int pass, int passes, double) { steps << qMakePair(pass, passes); });
    begin(5);
    ASSERT_TRUE(tools.finishAll());
    EXPECT_EQ(tools.count(ToolKind::Part), 1);
    EXPECT_EQ(tools.count(ToolKind::Encode), 1);
    EXPECT_EQ(tools.count(ToolKind::SecondPass), 1);
    EXPECT_EQ(steps, (QList<QPair<int, int>>{{1, 3}, {2, 3}, {3, 3}}));
    EXPECT_TEXT(icons(), QStringLiteral("puceSuccess"));
    EXPECT_FALSE(partLies());
    expectIdle();
}

TEST_F(PartRow, FailsWhenItsPartCannotBeMade)
{
    source = makeClips(1).first();
    tools.clips[source].verdict = judge::Verdict{judge::Outcome::Failed, {{.cause = judge::Cause::NothingDecodable}}};
    addRows({source});
    rows().setPart(0, ClipPart{0, 5});
    pressStart();
    ASSERT_TRUE(tools.finish(ToolKind::Part, 1));
    EXPECT_EQ(tools.count(ToolKind::Encode), 0);
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    EXPECT_FALSE(partLies());
    expectIdle();
}

TEST_F(PartRow, IsNotBelievedWithoutAVerdict)
{
    source = makeClips(1).first();
    tools.clips[source].verdict.reset();
    addRows({source});
    rows().setPart(0, ClipPart{0, 5});
    pressStart();
    ASSERT_TRUE(tools.finish(ToolKind::Part));
    EXPECT_EQ(tools.count(ToolKind::Encode), 0);
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
}

TEST_F(PartRow, StopWhileItIsMadeLeavesNothing)
{
    begin(3);
    tools.writeFiles(tools.current(ToolKind::Part));
    EXPECT_TRUE(partLies());
    pressStop();
    EXPECT_EQ(tools.count(ToolKind::Encode), 0);
    EXPECT_FALSE(partLies());
    EXPECT_TEXT(icons(), QStringLiteral("puceFailure"));
    expectIdle();
}

TEST_F(PartRow, BehindTheEndIsRefused)
{
    begin(3, {40, 50});
    EXPECT_EQ(tools.count(ToolKind::Part), 0);
    EXPECT_TEXT(rows().row(0).reason, QStringLiteral("the part lies behind the end of the clip (0:30)"));
    expectIdle();
}

TEST(StoredPart, ReadsAsItWasWritten)
{
    for (const ClipPart& part : {ClipPart{0, 5}, ClipPart{1.033367, std::nullopt}, ClipPart{3600.5, 7200}}) {
        EXPECT_EQ(partOfStored(storedPart(part)), part);
    }
    EXPECT_TEXT(storedPart(std::nullopt), QStringLiteral(""));
    for (const char* text : {"", "-", "5", "5-4", "a-b", "1-2-3", "1-x"}) {
        EXPECT_FALSE(partOfStored(QString::fromLatin1(text))) << text;
    }
}

TEST(ConvertedRecord, HasTheLengthOfThePart)
{
    BatchRow row;
    row.dico.insert(record::w_duration, 30);
    EXPECT_DOUBLE_EQ(convertedRecord(row).value(record::w_duration).toDouble(), 30);
    EXPECT_DOUBLE_EQ(convertedShare(row), 1);
    row.part = ClipPart{10, 25};
    EXPECT_DOUBLE_EQ(convertedRecord(row).value(record::w_duration).toDouble(), 15);
    EXPECT_DOUBLE_EQ(convertedShare(row), 0.5);
    row.part = ClipPart{20, std::nullopt};
    EXPECT_DOUBLE_EQ(convertedRecord(row).value(record::w_duration).toDouble(), 10);
    row.part = ClipPart{40, 50};
    EXPECT_DOUBLE_EQ(convertedRecord(row).value(record::w_duration).toDouble(), 0);
}

} // namespace
