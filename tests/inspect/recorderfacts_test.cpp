// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/recorderfacts.h"

#include "inspecttest.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct AvchdRow {
    const char* name;
    const char* path;
    const char* folder; // null: no recorder
};

class AvchdFolders : public testing::TestWithParam<AvchdRow>
{
};

TEST_P(AvchdFolders, AreKnownByTheirNames)
{
    const RecorderFacts facts = recorderFacts(text(GetParam().path));
    EXPECT_EQ(facts.kind, GetParam().folder != nullptr ? RecorderKind::Avchd : RecorderKind::None);
    EXPECT_EQ(facts.folder, text(GetParam().folder));
    EXPECT_EQ(facts.name, GetParam().folder != nullptr ? QStringLiteral("00001") : QString());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AvchdFolders,
    testing::Values(AvchdRow{"card", "/media/card/PRIVATE/AVCHD/BDMV/STREAM/00001.MTS", "/media/card"},
                    AvchdRow{"noPrivate", "/media/card/AVCHD/BDMV/STREAM/00001.MTS", "/media/card"},
                    AvchdRow{"copied", "/home/a/holiday/BDMV/STREAM/00001.MTS", "/home/a/holiday"},
                    AvchdRow{"small", "/media/card/private/avchd/bdmv/stream/00001.mts", "/media/card"},
                    AvchdRow{"otherStream", "/home/a/STREAM/00001.MTS", nullptr},
                    AvchdRow{"plain", "/home/a/00001.MTS", nullptr}),
    rowName<AvchdRow>);

TEST(EyetvRecordings, TellNameFolderAndLength)
{
    const TempFolder folder;
    const QString clip = folder.makeFile(QStringLiteral("News.eyetv/stream.mpg"));
    folder.makeFile(QStringLiteral("News.eyetv/0001.eyetvr"),
                    "<dict><key>actual duration</key><real>1234.5</real></dict>");
    const RecorderFacts facts = recorderFacts(clip);
    EXPECT_EQ(facts.kind, RecorderKind::Eyetv);
    EXPECT_EQ(facts.folder, folder.path(QStringLiteral("News.eyetv")));
    EXPECT_EQ(facts.name, QStringLiteral("News"));
    EXPECT_FLOAT_EQ(facts.seconds, 1234.5F);
}

TEST(EyetvRecordings, WithoutDescriptionHaveNoLength)
{
    const TempFolder folder;
    const QString clip = folder.makeFile(QStringLiteral("News.eyetv/stream.mpg"));
    EXPECT_EQ(recorderFacts(clip).kind, RecorderKind::Eyetv);
    EXPECT_FLOAT_EQ(recorderFacts(clip).seconds, 0);
}

} // namespace
