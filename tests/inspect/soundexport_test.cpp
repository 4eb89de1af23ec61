#include "inspect/soundexport.h"

#include "inspecttest.h"
#include "probe/batchtexts.h"

#include <QDir>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class SoundExport : public InspectTest
{
protected:
    QString movie(double soundSeconds = 2)
    {
        const QString path = folder.path(QStringLiteral("a.mov"));
        EXPECT_TRUE(makeMedia(path, QStringLiteral("-f lavfi -i testsrc2=size=320x240:rate=25:duration=2 -f lavfi -i "
                                                   "sine=sample_rate=48000:duration=%1 -c:v mjpeg -c:a pcm_s16le -ac 2 "
                                                   "-f mov")
                                        .arg(soundSeconds)));
        return path;
    }
    QStringList entries() const
    {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    const QString wave = folder.path(QStringLiteral("a.wav"));
};

TEST_F(SoundExport, WritesTheWholeSoundAndNothingElse)
{
    const QString source = movie();
    const QByteArray before = readBytes(source).value_or(QByteArray());
    const Result<ExportedSound, QString> sound = exportSound(source, wave);
    ASSERT_TRUE(sound) << sound.reason().toStdString();
    EXPECT_NEAR(sound->seconds, 2, 0.01);
    EXPECT_FALSE(sound->isShort());
    EXPECT_EQ(sound->bytes, 44 + qint64{48000} * 2 * 2 * 2);
    EXPECT_EQ(readBytes(source), before);
    EXPECT_TEXTS(entries(), (QStringList{QStringLiteral("a.mov"), QStringLiteral("a.wav")}));
}

TEST_F(SoundExport, ReplacesNothing)
{
    const QString source = movie();
    ASSERT_TRUE(writeBytes(wave, "precious"));
    EXPECT_FALSE(exportSound(source, wave));
    EXPECT_EQ(readBytes(wave), QByteArray("precious"));
    EXPECT_FALSE(exportSound(source, source));
    ASSERT_TRUE(QFile::link(QStringLiteral("/nonexistent"), folder.path(QStringLiteral("link.wav"))));
    EXPECT_FALSE(exportSound(source, folder.path(QStringLiteral("link.wav"))));
    EXPECT_TEXTS(entries(),
                 (QStringList{QStringLiteral("a.mov"), QStringLiteral("a.wav"), QStringLiteral("link.wav")}));
}

TEST_F(SoundExport, TellsWhatIsMissing)
{
    EXPECT_EQ(exportSound(folder.path(QStringLiteral("absent.mov")), wave).reason(), batchText("Clip_notFound"));
    const QString mute = folder.path(QStringLiteral("mute.mov"));
    ASSERT_TRUE(
        makeMedia(mute, QStringLiteral("-f lavfi -i testsrc2=size=320x240:rate=25:duration=1 -c:v mjpeg -f mov")));
    EXPECT_EQ(exportSound(mute, wave).reason(), QStringLiteral("no sound that can be decoded"));
    EXPECT_EQ(exportSound(movie(), QStringLiteral("/nonexistent/a.wav")).reason(),
              QStringLiteral("the file cannot be written there"));
    EXPECT_FALSE(exportSound(folder.makeFile(QStringLiteral("noise.mov"), QByteArray(999, 'x')), wave));
    EXPECT_FALSE(QFile::exists(wave));
}

// The last packet of plain sound is cut in the middle of a sample, which the decoder refuses.
TEST_F(SoundExport, OfACutMovieWhatIsThere)
{
    const QString source = movie();
    const QString whole = folder.path(QStringLiteral("whole.mov"));
    ASSERT_TRUE(makeMedia(whole, QStringLiteral("-i %1 -c copy -movflags +faststart -f mov").arg(source)));
    const QByteArray bytes = readBytes(whole).value_or(QByteArray());
    // Cut so that each of the four remainders of a sample's bytes occurs.
    for (qsizetype cut = 0; cut < 4; ++cut) {
        const QString name = QStringLiteral("cut%1").arg(cut);
        const QString damaged = folder.makeFile(name + QStringLiteral(".mov"), bytes.left(bytes.size() * 7 / 10 + cut));
        const Result<ExportedSound, QString> sound = exportSound(damaged, folder.path(name + QStringLiteral(".wav")));
        ASSERT_TRUE(sound) << sound.reason().toStdString();
        EXPECT_NEAR(sound->seconds, 1.4, 0.2);
        EXPECT_TRUE(sound->isShort());
    }
}

TEST_F(SoundExport, TellsAShortFile)
{
    // The sound of a stream that is cut off ends where the file does; its header promises more.
    ExportedSound sound;
    sound.seconds = 1.8;
    EXPECT_FALSE(sound.isShort());
    sound.expected = 2;
    EXPECT_TRUE(sound.isShort());
    sound.seconds = 1.95;
    EXPECT_FALSE(sound.isShort());
}

TEST(WaveSeconds, BelieveOnlyAHeaderThatAgreesWithTheFile)
{
    const TempFolder folder;
    QByteArray wave = QByteArray::fromHex("524946462c00000057415645666d7420100000000100010040"
                                          "1f0000803e0000020010006461746108000000") +
                      QByteArray(8, '\0');
    const Result<double, QString> seconds = waveSeconds(folder.makeFile(QStringLiteral("a.wav"), wave));
    ASSERT_TRUE(seconds) << seconds.reason().toStdString();
    EXPECT_DOUBLE_EQ(*seconds, 8.0 / 16000);
    EXPECT_FALSE(waveSeconds(folder.makeFile(QStringLiteral("short.wav"), wave.left(50))));
    EXPECT_FALSE(waveSeconds(folder.makeFile(QStringLiteral("head.wav"), wave.left(20))));
    EXPECT_FALSE(waveSeconds(folder.makeFile(QStringLiteral("other.wav"), QByteArray(60, 'x'))));
    EXPECT_FALSE(waveSeconds(folder.path(QStringLiteral("absent.wav"))));
}

} // namespace
