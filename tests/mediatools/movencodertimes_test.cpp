// SPDX-License-Identifier: GPL-3.0-or-later
#include "movencodermedia.h"

#include <QDataStream>
#include <QSet>

#include <gtest/gtest.h>

#include <cmath>

using namespace tavrix::test;

namespace
{

// What ffprobe says of every picture or packet of a stream, as numbers.
QList<double> numbersOf(const QString& path, const QString& stream, const QString& entry)
{
    const ToolResult result =
        runProgram(QStringLiteral("ffprobe"),
                   {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"), stream,
                    QStringLiteral("-show_entries"), entry, QStringLiteral("-of"), QStringLiteral("csv=p=0"), path});
    QList<double> numbers;
    const QList<QByteArray> lines = result.output.split('\n');
    for (QByteArray line : lines) {
        line.replace(',', "");
        if (!line.trimmed().isEmpty()) {
            numbers << line.toDouble();
        }
    }
    return numbers;
}

class MovencoderTimes : public testing::Test
{
protected:
    [[nodiscard]] QString path(const char* name) const { return folder_.path(QLatin1String(name)); }
    // Sizes stay, since only times count here.
    [[nodiscard]] QString settings() const
    {
        return folder_.makeFile(QStringLiteral("settings"),
                                QByteArrayLiteral("<plist version=\"1.0\"><dict><key>default</key><integer>4</integer>"
                                                  "<key>4</key><dict/></dict></plist>"));
    }
    [[nodiscard]] QString output() const { return path("out.mov"); }
    [[nodiscard]] bool makeClip(const QString& to, const QString& rate, const QString& seconds,
                                const QStringList& options) const
    {
        QStringList arguments{QStringLiteral("-f"),      QStringLiteral("lavfi"),
                              QStringLiteral("-i"),      QStringLiteral("testsrc2=s=320x180:r=") + rate,
                              QStringLiteral("-f"),      QStringLiteral("lavfi"),
                              QStringLiteral("-i"),      QStringLiteral("sine=440:r=48000"),
                              QStringLiteral("-t"),      seconds,
                              QStringLiteral("-c:v"),    QStringLiteral("libx264"),
                              QStringLiteral("-preset"), QStringLiteral("veryfast"),
                              QStringLiteral("-bf"),     QStringLiteral("2")};
        return makeMedia(arguments + options + QStringList{to});
    }
    TempFolder folder_;
};

struct RateRow {
    const char* name;
    const char* rate;
    const char* clip;
};

class MovencoderConstantRate : public MovencoderTimes, public testing::WithParamInterface<RateRow>
{
};

// A transport stream's clock cannot express 60000/1001: its pictures are 1501 and 1502 ticks apart.
TEST_P(MovencoderConstantRate, IsExact)
{
    const QString rate = QLatin1String(GetParam().rate);
    const QString clip = path(GetParam().clip);
    ASSERT_TRUE(makeClip(clip, rate, QStringLiteral("1"), {QStringLiteral("-c:a"), QStringLiteral("ac3")}));
    ASSERT_EQ(movencode(settings(), QString(), clip, output()).status, 0);
    const auto made = probe(output());
    EXPECT_EQ(made.value(QStringLiteral("r_frame_rate")), rate);
    EXPECT_EQ(made.value(QStringLiteral("avg_frame_rate")), rate);
    const QList<double> times = numbersOf(output(), QStringLiteral("v"), QStringLiteral("packet=pts"));
    EXPECT_GT(times.size(), 20);
    QSet<double> steps;
    for (int i = 1; i < times.size(); ++i) {
        steps.insert(times.at(i) - times.at(i - 1));
    }
    EXPECT_EQ(steps.size(), 1);
    EXPECT_EQ(made.value(QStringLiteral("nb_read_frames")), probe(clip).value(QStringLiteral("nb_read_frames")));
}

INSTANTIATE_TEST_SUITE_P(Rates, MovencoderConstantRate,
                         testing::Values(RateRow{"TransportStream5994", "60000/1001", "a.mts"},
                                         RateRow{"TransportStream2997", "30000/1001", "a.mts"},
                                         RateRow{"TransportStream23976", "24000/1001", "a.mts"},
                                         RateRow{"TransportStream50", "50/1", "a.mts"},
                                         RateRow{"Movie2997", "30000/1001", "a.mov"}),
                         [](const testing::TestParamInfo<RateRow>& row) { return std::string(row.param.name); });

TEST_F(MovencoderTimes, VariableRateStaysVariable)
{
    const QString clip = path("a.mov");
    ASSERT_TRUE(makeClip(clip, QStringLiteral("30"), QStringLiteral("2"),
                         {QStringLiteral("-vf"), QStringLiteral("select='not(mod(n,3)*mod(n,5))'"),
                          QStringLiteral("-vsync"), QStringLiteral("vfr"), QStringLiteral("-an")}));
    ASSERT_EQ(movencode(settings(), QString(), clip, output()).status, 0);
    const QList<double> before = numbersOf(clip, QStringLiteral("v"), QStringLiteral("frame=pts_time"));
    const QList<double> after = numbersOf(output(), QStringLiteral("v"), QStringLiteral("frame=pts_time"));
    EXPECT_EQ(before.size(), 28);
    EXPECT_EQ(after, before);
}

// Two recordings whose times overlap by two pictures, as camera software joins them. What was late once must not make
// all the rest late: the sound knows nothing of it.
TEST_F(MovencoderTimes, JoinedRecordingsKeepPicturesAndSoundTogether)
{
    QByteArray joined;
    QStringList parts{path("a.mts"), path("b.mts"), path("c.mts")};
    for (int i = 0; i < parts.size(); ++i) {
        const QString offset = QString::number(1 + i * (1.0 - 2.0 / 60), 'f', 6);
        ASSERT_TRUE(makeClip(parts.at(i), QStringLiteral("60"), QStringLiteral("1"),
                             {QStringLiteral("-an"), QStringLiteral("-output_ts_offset"), offset}));
        joined += *readBytes(parts.at(i));
    }
    const QString clip = folder_.makeFile(QStringLiteral("joined.mts"), joined);
    ASSERT_EQ(movencode(settings(), QString(), clip, output()).status, 0);
    const QList<double> after = numbersOf(output(), QStringLiteral("v"), QStringLiteral("frame=pts_time"));
    ASSERT_EQ(after.size(), 180);
    for (const int picture : {0, 30, 59, 70, 119, 130, 179}) {
        const double own = picture / 60.0 - 2.0 / 60 * (picture / 60);
        EXPECT_NEAR(after.at(picture), own, 0.001) << picture;
    }
    for (int i = 1; i < after.size(); ++i) {
        EXPECT_GT(after.at(i), after.at(i - 1)) << i;
    }
}

// The clock of the second recording is ten minutes ahead.
TEST_F(MovencoderTimes, ClockThatJumpsMovesPicturesAndSoundTogether)
{
    QByteArray joined;
    for (const char* offset : {"0", "600"}) {
        const QString part = path("part.mts");
        ASSERT_TRUE(makeClip(part, QStringLiteral("25"), QStringLiteral("1"),
                             {QStringLiteral("-c:a"), QStringLiteral("mp2"), QStringLiteral("-output_ts_offset"),
                              QLatin1String(offset)}));
        joined += *readBytes(part);
    }
    const QString clip = folder_.makeFile(QStringLiteral("joined.mts"), joined);
    ASSERT_EQ(movencode(settings(), QString(), clip, output()).status, 0);
    const auto made = probe(output());
    EXPECT_EQ(made.value(QStringLiteral("nb_read_frames")), QStringLiteral("50"));
    EXPECT_NEAR(made.value(QStringLiteral("duration")).toDouble(), 2.0, 0.05);
    EXPECT_NEAR(made.value(QStringLiteral("audio.duration")).toDouble(), 2.0, 0.1);
}

// An edit list of two pieces shows pictures in another order than they are stored, and hides others.
TEST_F(MovencoderTimes, PiecesOfAnEditListComeOutAsAPlayerShowsThem)
{
    const QString picture = path("picture.mov");
    const QString whole = path("whole.mov");
    ASSERT_TRUE(
        makeMedia({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                   QStringLiteral("testsrc2=s=320x180:r=25:d=3"), QStringLiteral("-c:v"), QStringLiteral("libx264"),
                   QStringLiteral("-g"), QStringLiteral("12"), QStringLiteral("-bf"), QStringLiteral("2"), picture}));
    // The delay gives the picture an edit list of two entries, which are then rewritten.
    ASSERT_TRUE(makeMedia({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                           QStringLiteral("sine=d=2:r=48000"), QStringLiteral("-itsoffset"), QStringLiteral("0.5"),
                           QStringLiteral("-i"), picture, QStringLiteral("-map"), QStringLiteral("1"),
                           QStringLiteral("-map"), QStringLiteral("0"), QStringLiteral("-c:v"), QStringLiteral("copy"),
                           QStringLiteral("-c:a"), QStringLiteral("pcm_s16le"), whole}));
    auto bytes = *readBytes(whole);
    constexpr qsizetype typeAndVersion = 8;
    const qsizetype list = bytes.indexOf("elst");
    ASSERT_EQ(bytes.mid(list + typeAndVersion, 4), QByteArray("\0\0\0\2", 4));
    const int start = [&bytes, list] {
        qint32 time = 0;
        QDataStream(bytes.mid(list + typeAndVersion + 4 + 12 + 4, 4)) >> time;
        return time;
    }();
    constexpr int tick = 12'800 / 25;
    QByteArray edits;
    QDataStream(&edits, QIODevice::WriteOnly)
        << qint32(800) << qint32(start) << qint32(65536) << qint32(1000) << qint32(start + 30 * tick) << qint32(65536);
    bytes.replace(list + typeAndVersion + 4, edits.size(), edits);
    const QString pieces = folder_.makeFile(QStringLiteral("pieces.mov"), bytes);
    const auto source = probe(pieces);
    ASSERT_EQ(source.value(QStringLiteral("nb_read_frames")), QStringLiteral("45"));
    ASSERT_EQ(movencode(settings(), QString(), pieces, output()).status, 0);
    const auto made = probe(output());
    EXPECT_EQ(made.value(QStringLiteral("nb_read_frames")), QStringLiteral("45"));
    EXPECT_NEAR(made.value(QStringLiteral("duration")).toDouble(), 1.8, 0.001);
    const QList<double> times = numbersOf(output(), QStringLiteral("v"), QStringLiteral("frame=pts_time"));
    for (int i = 0; i < times.size(); ++i) {
        EXPECT_NEAR(times.at(i), i / 25.0, 0.0005) << i;
    }
    EXPECT_GE(psnr(output(), pieces, QStringLiteral("[0:v][1:v]psnr")), 38.0);
}

} // namespace
