#include "movencodermedia.h"
#include "tools/movencoder/damage.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

using namespace tavrix::test;
using tavrix::movencoder::Damage;
using tavrix::movencoder::damageText;

namespace
{

const QString plain = QStringLiteral("1280x720p");
const QString aic = QStringLiteral("aic");
constexpr qsizetype packetSize = 188;

struct TextRow {
    const char* name;
    Damage damage;
    const char* text;
};

class MovencoderDamageText : public testing::TestWithParam<TextRow>
{
};

TEST_P(MovencoderDamageText, SaysHowMuchAndWhere)
{
    EXPECT_EQ(damageText(GetParam().damage), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MovencoderDamageText,
    testing::Values(TextRow{"None", {}, ""}, TextRow{"One", {1, 0.87}, "Source damaged: 1 picture at 0:00.9"},
                    TextRow{"Many", {12, 4.2}, "Source damaged: 12 pictures from 0:04.2 on"},
                    TextRow{"Late", {2, 3723.96}, "Source damaged: 2 pictures from 1:02:04.0 on"},
                    TextRow{"Early", {0, 0, true, 9.8, 20.0}, "Incomplete: 9.8 of 20.0 s could be read"},
                    TextRow{"EarlyWithoutLength", {0, 0, true, 9.84, 0}, "Incomplete: only 9.8 s could be read"},
                    TextRow{"Both",
                            {1, 59.99, true, 60.0, 70.0},
                            "Incomplete: 60.0 of 70.0 s could be read; Source damaged: 1 picture at 1:00.0"}),
    [](const testing::TestParamInfo<TextRow>& row) { return std::string(row.param.name); });

// The recording and its rewrapped form are made once for all tests.
class MovencoderDamage : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        shared_ = new TempFolder;
        made_ = makeCameraMovie(movie(), pictures);
    }
    static void TearDownTestSuite()
    {
        delete shared_;
        shared_ = nullptr;
    }
    void SetUp() override { ASSERT_TRUE(made_); }
    static QString movie() { return shared_->path(QStringLiteral("camera.mov")); }
    static QString recording() { return shared_->path(QStringLiteral("camera.mov.mts")); }
    [[nodiscard]] QString output() const { return folder_.path(QStringLiteral("out.mov")); }
    static constexpr int pictures = 40;

    static TempFolder* shared_;
    static bool made_;
    TempFolder folder_;
};
TempFolder* MovencoderDamage::shared_ = nullptr;
bool MovencoderDamage::made_ = false;

// The recording without one packet of its picture, in its middle.
QByteArray withoutAPacket(const QByteArray& stream)
{
    constexpr int picturePid = 0x100;
    for (qsizetype at = stream.size() / packetSize / 2 * packetSize; at < stream.size(); at += packetSize) {
        const int pid = (stream.at(at + 1) & 0x1F) << 8 | static_cast<unsigned char>(stream.at(at + 2));
        const bool begins = (stream.at(at + 1) & 0x40) != 0;
        if (pid == picturePid && !begins) {
            return stream.left(at) + stream.mid(at + packetSize);
        }
    }
    return {};
}

TEST_F(MovencoderDamage, DamagedPicturesCostOnlyThemselves)
{
    auto bytes = readBytes(movie());
    ASSERT_TRUE(bytes);
    // More than one of the small pictures of the end, so that at least one loses its head.
    std::fill_n(bytes->begin() + bytes->size() * 8 / 10, bytes->size() / 10, '\xFF');
    const QString damaged = folder_.makeFile(QStringLiteral("damaged.mov"), *bytes);
    ASSERT_NE(decodeErrors(damaged).toStdString(), "");
    const ToolResult result = movencode(settingsPath(plain), aic, damaged, output());
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.contains("100%"));
    EXPECT_TRUE(result.errors.startsWith("movencoder: " + QFile::encodeName(damaged) + ": Source damaged: "))
        << result.errors.constData();
    EXPECT_EQ(result.errors.count('\n'), 1) << "a decoder's words are not the tool's";
    EXPECT_EQ(probe(output()).value(QStringLiteral("nb_read_frames")), QString::number(pictures));
    EXPECT_EQ(probe(output()).value(QStringLiteral("duration")), probe(movie()).value(QStringLiteral("duration")));
}

// Whether a decoder's thread marks a picture before it is handed out is chance; the outcome must not be.
TEST_F(MovencoderDamage, LostPacketIsToldEveryTime)
{
    const QByteArray cut = withoutAPacket(*readBytes(recording()));
    ASSERT_FALSE(cut.isEmpty());
    const QString lost = folder_.makeFile(QStringLiteral("lost.mts"), cut);
    for (int run = 0; run < 4; ++run) {
        QFile::remove(output());
        const ToolResult result = movencode(settingsPath(plain), aic, lost, output());
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(result.errors.contains(": Source damaged: 1 picture at 0:00.")) << result.errors.constData();
    }
    EXPECT_EQ(probe(output()).value(QStringLiteral("nb_read_frames")), QString::number(pictures));
}

TEST_F(MovencoderDamage, RecordingThatStartsInTheMiddleIsWhole)
{
    const QByteArray bytes = *readBytes(recording());
    const QString late =
        folder_.makeFile(QStringLiteral("late.mts"), bytes.mid(bytes.size() / packetSize / 3 * packetSize));
    const ToolResult result = movencode(settingsPath(plain), aic, late, output());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors.toStdString(), "");
    const int kept = probe(output()).value(QStringLiteral("nb_read_frames")).toInt();
    EXPECT_GT(kept, pictures / 4);
    EXPECT_LT(kept, pictures);
}

TEST_F(MovencoderDamage, SourceThatEndsEarlyIsKeptAsFarAsItGoes)
{
    const QString whole = folder_.path(QStringLiteral("whole.mov"));
    ASSERT_TRUE(makeMedia({QStringLiteral("-i"), movie(), QStringLiteral("-c"), QStringLiteral("copy"),
                           QStringLiteral("-movflags"), QStringLiteral("+faststart"), whole}));
    ASSERT_TRUE(QFile::resize(whole, QFileInfo(whole).size() * 9 / 10));
    const ToolResult result = movencode(settingsPath(plain), aic, whole, output());
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.errors.contains(": Incomplete: 0.")) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains(" of 0.7 s could be read")) << result.errors.constData();
    EXPECT_EQ(decodeErrors(output()).toStdString(), "");
    EXPECT_GT(probe(output()).value(QStringLiteral("nb_read_frames")).toInt(), pictures / 3);
}

// Half a recording is no reason to lose the whole one that stands there.
TEST_F(MovencoderDamage, IncompleteOutputReplacesNothing)
{
    const QString lost = folder_.makeFile(QStringLiteral("lost.mts"), withoutAPacket(*readBytes(recording())));
    const QByteArray old("the file of last week");
    ASSERT_TRUE(writeBytes(output(), old));
    const ToolResult result = movencode(settingsPath(plain), aic, lost, output());
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.contains("movencoder: " + QFile::encodeName(output()) + ": "))
        << result.errors.constData();
    EXPECT_FALSE(result.output.contains("100%"));
    EXPECT_TRUE(readBytes(output()) == old);
    EXPECT_EQ(entriesOf(folder_.path()).size(), 2);
}

TEST_F(MovencoderDamage, MotionJpegPictureIsNotDamagedInSilence)
{
    const QString clip = folder_.path(QStringLiteral("clip.avi"));
    ASSERT_TRUE(makeMedia({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                           QStringLiteral("mandelbrot=s=640x480:r=15"), QStringLiteral("-frames:v"),
                           QStringLiteral("6"), QStringLiteral("-c:v"), QStringLiteral("mjpeg"), QStringLiteral("-q:v"),
                           QStringLiteral("3"), QStringLiteral("-pix_fmt"), QStringLiteral("yuvj422p"), clip}));
    ASSERT_EQ(movencode(settingsPath(plain), aic, clip, output()).errors.toStdString(), "");
    auto bytes = *readBytes(clip);
    std::fill_n(bytes.begin() + bytes.size() / 2, 300, '\xA5');
    ASSERT_TRUE(writeBytes(clip, bytes));
    QFile::remove(output());
    const ToolResult result = movencode(settingsPath(plain), aic, clip, output());
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.errors.contains(": Source damaged: 1 picture at 0:00.")) << result.errors.constData();
    EXPECT_EQ(probe(output()).value(QStringLiteral("nb_read_frames")), QStringLiteral("6"));
}

} // namespace
