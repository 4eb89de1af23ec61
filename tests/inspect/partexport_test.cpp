// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/partexport.h"

#include "inspecttest.h"
#include "probe/batchtexts.h"

#include <QDir>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class PartExport : public InspectTest
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

    static Result<ExportedPart, QString> exported(const QString& source, const QString& destination,
                                                  PartForm form = PartForm::Wave)
    {
        PartRequest request;
        request.source = source;
        request.destination = destination;
        request.form = form;
        return exportPart(request);
    }

    const QString wave = folder.path(QStringLiteral("a.wav"));
};

TEST_F(PartExport, WritesTheWholeSoundAndNothingElse)
{
    const QString source = movie();
    const QByteArray before = readBytes(source).value_or(QByteArray());
    const Result<ExportedPart, QString> sound = exported(source, wave);
    ASSERT_TRUE(sound) << sound.reason().toStdString();
    EXPECT_NEAR(sound->to - sound->from, 2, 0.01);
    EXPECT_EQ(sound->verdict.outcome, judge::Outcome::Whole);
    EXPECT_EQ(sound->bytes, 44 + qint64{48000} * 2 * 2 * 2);
    EXPECT_EQ(readBytes(source), before);
    EXPECT_TEXTS(entries(), (QStringList{QStringLiteral("a.mov"), QStringLiteral("a.wav")}));
}

// The sound of some recorders could not be stored in a movie, and the clip neither saved nor converted in part.
TEST_F(PartExport, WritesTheUncompressedSoundOfDiscsAsPlainSamples)
{
    for (const char* samples : {"s16", "s32"}) {
        const QString source = folder.path(QStringLiteral("00001.m2ts"));
        ASSERT_TRUE(makeMedia(source, QStringLiteral("-f lavfi -i testsrc2=size=320x240:rate=25:duration=4 -f lavfi -i "
                                                     "sine=sample_rate=48000:duration=4 -c:v libx264 -g 5 -c:a "
                                                     "pcm_bluray -ac 2 -sample_fmt %1 -f mpegts -mpegts_m2ts_mode 1")
                                          .arg(QLatin1String(samples))));
        PartRequest request;
        request.source = source;
        request.form = PartForm::Movie;
        request.destination = folder.path(QStringLiteral("whole.mov"));
        const Result<ExportedPart, QString> whole = exportPart(request);
        ASSERT_TRUE(whole) << whole.reason().toStdString();
        EXPECT_EQ(whole->verdict.outcome, judge::Outcome::Whole);
        request.destination = folder.path(QStringLiteral("part.mov"));
        request.part = ClipPart{1, 2};
        const Result<ExportedPart, QString> part = exportPart(request);
        ASSERT_TRUE(part) << part.reason().toStdString();
        EXPECT_EQ(part->verdict.outcome, judge::Outcome::Whole);
        // Not a sample is changed.
        const QString fromSource = folder.path(QStringLiteral("source.pcm"));
        const QString fromPart = folder.path(QStringLiteral("part.pcm"));
        const QString decode = QStringLiteral("-i %1 -vn -f s32le");
        EXPECT_TRUE(makeMedia(fromSource, decode.arg(source)) && makeMedia(fromPart, decode.arg(request.destination)));
        const QByteArray all = readBytes(fromSource).value_or(QByteArray());
        const QByteArray cut = readBytes(fromPart).value_or(QByteArray());
        EXPECT_GE(cut.size(), qsizetype{48000} * 8);
        EXPECT_TRUE(all.contains(cut.left(qsizetype{40000} * 8))) << samples;
        for (const QString& file : {source, folder.path(QStringLiteral("whole.mov")), request.destination}) {
            QFile::remove(file);
        }
    }
}

TEST_F(PartExport, ReplacesNothing)
{
    const QString source = movie();
    ASSERT_TRUE(writeBytes(wave, "precious"));
    EXPECT_FALSE(exported(source, wave));
    EXPECT_EQ(readBytes(wave), QByteArray("precious"));
    EXPECT_FALSE(exported(source, source));
    ASSERT_TRUE(QFile::link(QStringLiteral("/nonexistent"), folder.path(QStringLiteral("link.wav"))));
    EXPECT_FALSE(exported(source, folder.path(QStringLiteral("link.wav"))));
    EXPECT_TEXTS(entries(),
                 (QStringList{QStringLiteral("a.mov"), QStringLiteral("a.wav"), QStringLiteral("link.wav")}));
}

TEST_F(PartExport, TellsWhatIsMissing)
{
    EXPECT_EQ(exported(folder.path(QStringLiteral("absent.mov")), wave).reason(), batchText("Clip_notFound"));
    const QString mute = folder.path(QStringLiteral("mute.mov"));
    ASSERT_TRUE(
        makeMedia(mute, QStringLiteral("-f lavfi -i testsrc2=size=320x240:rate=25:duration=1 -c:v mjpeg -f mov")));
    EXPECT_EQ(exported(mute, wave).reason(), QStringLiteral("no sound that can be decoded"));
    EXPECT_EQ(exported(movie(), QStringLiteral("/nonexistent/a.wav")).reason(),
              QStringLiteral("the file cannot be written there"));
    EXPECT_FALSE(exported(folder.makeFile(QStringLiteral("noise.mov"), QByteArray(999, 'x')), wave));
    EXPECT_FALSE(QFile::exists(wave));
}

// The last packet of plain sound is cut in the middle of a sample, which the decoder refuses.
TEST_F(PartExport, OfACutMovieWhatIsThere)
{
    const QString source = movie();
    const QString whole = folder.path(QStringLiteral("whole.mov"));
    ASSERT_TRUE(makeMedia(whole, QStringLiteral("-i %1 -c copy -movflags +faststart -f mov").arg(source)));
    const QByteArray bytes = readBytes(whole).value_or(QByteArray());
    // Cut so that each of the four remainders of a sample's bytes occurs.
    for (qsizetype cut = 0; cut < 4; ++cut) {
        const QString name = QStringLiteral("cut%1").arg(cut);
        const QString damaged = folder.makeFile(name + QStringLiteral(".mov"), bytes.left(bytes.size() * 7 / 10 + cut));
        const Result<ExportedPart, QString> sound = exported(damaged, folder.path(name + QStringLiteral(".wav")));
        ASSERT_TRUE(sound) << sound.reason().toStdString();
        EXPECT_NEAR(sound->to - sound->from, 1.4, 0.2);
        EXPECT_EQ(sound->verdict.outcome, judge::Outcome::Incomplete);
    }
}

PartRequest partOf(const QString& source, const QString& destination, double from, double to)
{
    PartRequest request;
    request.source = source;
    request.destination = destination;
    request.part = ClipPart{from, to};
    return request;
}

TEST_F(PartExport, WritesAPartOfTheSound)
{
    PartRequest request = partOf(movie(), wave, 0.5, 1.25);
    request.form = PartForm::Wave;
    const Result<ExportedPart, QString> part = exportPart(request);
    ASSERT_TRUE(part) << part.reason().toStdString();
    EXPECT_EQ(part->bytes, 44 + qint64{36000} * 2 * 2);
}

TEST_F(PartExport, WritesMoviesWithTheHeaderAtEitherEnd)
{
    const QString source = movie();
    for (const PartForm form : {PartForm::Movie, PartForm::MovieHeaderFirst}) {
        const QString file = folder.path(form == PartForm::Movie ? QStringLiteral("b.mov") : QStringLiteral("c.mov"));
        PartRequest request = partOf(source, file, 0.4, 1.2);
        request.form = form;
        const Result<ExportedPart, QString> part = exportPart(request);
        ASSERT_TRUE(part) << part.reason().toStdString();
        EXPECT_NEAR(part->from, 0.4, 1e-6);
        EXPECT_NEAR(part->to, 1.2, 1e-6);
        const QByteArray bytes = readBytes(file).value_or(QByteArray());
        EXPECT_EQ(bytes.indexOf("moov") < bytes.indexOf("mdat"), form == PartForm::MovieHeaderFirst);
    }
}

TEST_F(PartExport, ShowsThePicturesAtAnotherSize)
{
    PartRequest request = partOf(movie(), folder.path(QStringLiteral("b.mov")), 0, 1);
    request.size = QSize(160, 90);
    ASSERT_TRUE(exportPart(request));
    // A track that has one side already is left as it is.
    request.destination = folder.path(QStringLiteral("c.mov"));
    request.size = QSize(320, 180);
    EXPECT_FALSE(exportPart(request));
    EXPECT_FALSE(QFile::exists(request.destination));
}

TEST_F(PartExport, ReplacesOnlyWhenToldAndOnlyAFile)
{
    const QString source = movie();
    const QString file = folder.makeFile(QStringLiteral("b.mov"), "precious");
    PartRequest request = partOf(source, file, 0, 1);
    EXPECT_FALSE(exportPart(request));
    EXPECT_EQ(readBytes(file), QByteArray("precious"));
    request.replaces = true;
    request.part = ClipPart{60, 70};
    EXPECT_FALSE(exportPart(request));
    EXPECT_EQ(readBytes(file), QByteArray("precious"));
    request.part = ClipPart{0, 1};
    ASSERT_TRUE(exportPart(request));
    EXPECT_GT(readBytes(file).value_or(QByteArray()).size(), 1000);
    request.destination = source;
    EXPECT_FALSE(exportPart(request));
    request.destination = folder.path(QStringLiteral("link.mov"));
    ASSERT_TRUE(QFile::link(file, request.destination));
    EXPECT_FALSE(exportPart(request));
    request.destination = folder.makeFolder(QStringLiteral("folder.mov"));
    EXPECT_FALSE(exportPart(request));
}

// Half a recording takes no older one's place.
TEST_F(PartExport, IncompletePartReplacesNothing)
{
    const QString source = movie();
    const QString whole = folder.path(QStringLiteral("whole.mov"));
    ASSERT_TRUE(makeMedia(whole, QStringLiteral("-i %1 -c copy -movflags +faststart -f mov").arg(source)));
    const QByteArray bytes = readBytes(whole).value_or(QByteArray());
    const QString cut = folder.makeFile(QStringLiteral("cut.mov"), bytes.left(bytes.size() * 7 / 10));
    const QString file = folder.makeFile(QStringLiteral("b.mov"), "precious");
    PartRequest request = partOf(cut, file, 0.5, 1.9);
    request.replaces = true;
    EXPECT_FALSE(exportPart(request));
    EXPECT_EQ(readBytes(file), QByteArray("precious"));
    // What lies before the damage is whole.
    request.part = ClipPart{0, 0.8};
    const Result<ExportedPart, QString> part = exportPart(request);
    ASSERT_TRUE(part) << part.reason().toStdString();
    EXPECT_EQ(part->verdict.outcome, judge::Outcome::Whole);
}

} // namespace
