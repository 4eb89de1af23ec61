// SPDX-License-Identifier: GPL-3.0-or-later
// Marks, steps, saving and converting of a part, with the real window, the real player and the real tool.
#include "windowharness.h"

#include "gui/preview/moviewidget.h"
#include "gui/preview/partdialog.h"
#include "gui/preview/previewwindow.h"
#include "gui/preview/trimline.h"
#include "gui/preview/trimpanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>

namespace tavrix::test
{
namespace
{

struct ClipRow {
    const char* name;
    const char* codecs;
};

const ClipRow clipRows[] = {
    {"clip.MTS", "-c:v libx264 -preset ultrafast -bf 2 -g 25 -pix_fmt yuv420p -c:a ac3 -f mpegts"},
    {"clip.mov", "-c:v libx264 -preset ultrafast -bf 2 -g 25 -pix_fmt yuv420p -c:a aac"},
    {"clip.avi", "-c:v mjpeg -pix_fmt yuvj420p -c:a pcm_s16le"},
};

constexpr double picture = 1.0 / 25;
constexpr double rounding = 0.002;
// In a transport stream the sound may begin before the first picture.
constexpr double latestStart = 0.2;

class Trimming : public WindowTest
{
protected:
    // Four seconds of pictures with sound.
    QString makeClip(const ClipRow& row, const char* seconds = "4")
    {
        const QString clip = folder_.path(QLatin1String(row.name));
        const QStringList arguments =
            QStringLiteral("-nostdin -v error -y -f lavfi -i testsrc2=size=320x180:rate=25 -f lavfi -i sine -t %1 %2")
                .arg(QLatin1String(seconds), QLatin1String(row.codecs))
                .split(u' ');
        EXPECT_EQ(QProcess::execute(QStringLiteral("ffmpeg"), arguments + QStringList{clip}), 0);
        return clip;
    }
    PreviewWindow& preview() { return *program_->face().previewWindow(); }
    template <class Widget> Widget* part(const char* name) { return preview().findChild<Widget*>(QLatin1String(name)); }
    // Shows the clip and holds it at its first picture.
    void open(const QString& clip)
    {
        program_->face().preview(clip);
        MovieWidget& movie = preview().movieWidget();
        ASSERT_TRUE(waitFor([&movie] { return movie.hasFrame(); }));
        QTest::mouseClick(part<QAbstractButton>("previewStopBt"), Qt::LeftButton);
        ASSERT_TRUE(waitFor([this, &movie] { return movie.showsStill() && preview().shownFrom() < latestStart; }));
    }
    void key(Qt::Key key) { QTest::keyClick(&preview(), key); }
    // Presses the line there; the exact picture is shown.
    void go(double seconds)
    {
        TrimLine* line = part<TrimLine>("previewTime");
        const QPoint place(line->placeOf(qRound(seconds * 1000)), line->height() / 2);
        QTest::mouseClick(line, Qt::LeftButton, Qt::NoModifier, place);
        ASSERT_TRUE(waitFor([this, seconds] { return std::abs(preview().shownFrom() - seconds) < 0.06; }));
    }
    void step(Qt::Key by, double to)
    {
        key(by);
        ASSERT_TRUE(waitFor([this, to] { return std::abs(preview().shownFrom() - to) < rounding; }))
            << preview().shownFrom() << " instead of " << to;
    }
    QString words(const char* name) { return part<QLabel>(name)->text(); }
    TrimPanel& marks() { return *part<TrimPanel>("previewTrim"); }
    PartDialog& dialog() { return *part<PartDialog>("partDialog"); }
    // Presses Save… and gives the name; whether the file is then there or not is for the caller.
    void saveAs(const QString& path)
    {
        QTest::mouseClick(dialog().findChild<QPushButton*>(QStringLiteral("partSaveBt")), Qt::LeftButton);
        auto* chooser = dialog().findChild<QFileDialog*>(QStringLiteral("partFileChooser"));
        ASSERT_NE(chooser, nullptr);
        Q_EMIT chooser->fileSelected(path);
        chooser->close();
    }
    bool works() { return dialog().isWorking(); }
    QString dialogWords() { return dialog().findChild<QLabel*>(QStringLiteral("partWords"))->text(); }
};

double secondsOf(const QString& path, const char* stream)
{
    QProcess probe;
    probe.start(QStringLiteral("ffprobe"),
                {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                 QLatin1String(stream), QStringLiteral("-show_entries"), QStringLiteral("stream=duration"),
                 QStringLiteral("-of"), QStringLiteral("csv=p=0"), path});
    probe.waitForFinished(-1);
    return probe.readAllStandardOutput().trimmed().toDouble();
}

} // namespace

TEST_F(Trimming, GoesFromPictureToPicture)
{
    startProgram();
    for (const ClipRow& row : clipRows) {
        SCOPED_TRACE(row.name);
        open(makeClip(row));
        const double first = preview().shownFrom();
        step(Qt::Key_Right, first + picture);
        step(Qt::Key_Period, first + 2 * picture);
        step(Qt::Key_Left, first + picture);
        step(Qt::Key_Comma, first);
        key(Qt::Key_Left); // there is none before
        step(Qt::Key_Right, first + picture);
        go(2);
        const double middle = preview().shownFrom();
        EXPECT_NEAR(std::remainder(middle - first, picture), 0, rounding);
        step(Qt::Key_Left, middle - picture);
        key(Qt::Key_End);
        EXPECT_TRUE(waitFor([this, first] {
            return std::abs(preview().shownFrom() - first - 99 * picture) < rounding;
        })) << preview().shownFrom();
        preview().close();
    }
}

TEST_F(Trimming, MarksStandBetweenPictures)
{
    startProgram();
    open(makeClip(clipRows[0]));
    EXPECT_FALSE(marks().part());
    go(1);
    key(Qt::Key_I);
    const double from = preview().shownFrom();
    EXPECT_DOUBLE_EQ(marks().from().value_or(-1), from);
    go(3);
    key(Qt::Key_O);
    EXPECT_DOUBLE_EQ(marks().to().value_or(-1), preview().shownTo());
    EXPECT_NEAR(preview().shownTo() - preview().shownFrom(), picture, rounding);
    EXPECT_TRUE(words("trimPartStr").startsWith(QStringLiteral("Part: 0:0"))) << words("trimPartStr").toStdString();
    // The beginning behind the end takes the end away.
    go(3.5);
    QTest::mouseClick(part<QPushButton>("trimInBt"), Qt::LeftButton);
    EXPECT_FALSE(marks().to());
    QTest::mouseClick(part<QPushButton>("trimClearBt"), Qt::LeftButton);
    EXPECT_FALSE(marks().part());
    EXPECT_FALSE(part<QPushButton>("trimClearBt")->isEnabled());
}

TEST_F(Trimming, MarksAreDragged)
{
    startProgram();
    open(makeClip(clipRows[1]));
    go(1);
    key(Qt::Key_I);
    go(3);
    key(Qt::Key_O);
    TrimLine* line = part<TrimLine>("previewTime");
    const int middle = line->height() / 2;
    const auto drag = [line, middle](double from, int side, double to) {
        QTest::mousePress(line, Qt::LeftButton, Qt::NoModifier,
                          QPoint(line->placeOf(qRound(from * 1000)) + side * 4, middle));
        QTest::mouseMove(line, QPoint(line->placeOf(qRound(to * 1000)), middle));
        QTest::mouseRelease(line, Qt::LeftButton, Qt::NoModifier, QPoint(line->placeOf(qRound(to * 1000)), middle));
    };
    drag(*marks().from(), -1, 2);
    EXPECT_TRUE(waitFor([this] {
        const double from = marks().from().value_or(-1);
        return std::abs(from - 2) < 0.06 && std::abs(std::remainder(from, picture)) < rounding;
    })) << marks().from().value_or(-1);
    drag(*marks().to(), 1, 2.5);
    EXPECT_TRUE(waitFor([this] {
        const double to = marks().to().value_or(-1);
        return std::abs(to - 2.5) < 0.06 && std::abs(std::remainder(to, picture)) < rounding;
    })) << marks().to().value_or(-1);
    // What is dragged over the other mark takes its place.
    drag(*marks().to(), 1, 1);
    EXPECT_TRUE(waitFor([this] { return !marks().from() && marks().to(); }));
}

TEST_F(Trimming, TheLineShowsSmallPictures)
{
    startProgram();
    open(makeClip(clipRows[0]));
    TrimLine* line = part<TrimLine>("previewTime");
    EXPECT_TRUE(waitFor([line] { return line->isFilled(); }));
    EXPECT_TRUE(waitFor([line] {
        const QImage shown = line->grab().toImage();
        QSet<QRgb> colours;
        for (int x = 0; x < shown.width(); x += 3) {
            colours << shown.pixel(x, shown.height() / 2);
        }
        return colours.size() > 20;
    }));
}

TEST_F(Trimming, SavesAPartAsAMovie)
{
    startProgram();
    const QString clip = makeClip(clipRows[0]);
    const QByteArray before = readBytes(clip).value_or(QByteArray());
    open(clip);
    go(1);
    key(Qt::Key_I);
    go(2);
    key(Qt::Key_O);
    const double length = *marks().to() - *marks().from();
    QTest::mouseClick(part<QPushButton>("trimSaveBt"), Qt::LeftButton);
    const QString file = folder_.path(QStringLiteral("part.mov"));
    saveAs(file);
    EXPECT_TRUE(works());
    ASSERT_TRUE(waitFor([this] { return !works(); }));
    EXPECT_EQ(dialogWords(), QStringLiteral("part.mov is saved."));
    EXPECT_NEAR(secondsOf(file, "v"), length, 0.01);
    // Saved again under the name of an older one, which the file chooser has asked about.
    auto* kind = dialog().findChild<QComboBox*>(QStringLiteral("partKind"));
    kind->setCurrentIndex(2);
    EXPECT_FALSE(dialog().findChild<QComboBox*>(QStringLiteral("partSize"))->isEnabled());
    const QString wave = folder_.makeFile(QStringLiteral("part.wav"), "older");
    saveAs(wave);
    ASSERT_TRUE(waitFor([this] { return !works(); }));
    EXPECT_NEAR(secondsOf(wave, "a"), length, 0.01);
    EXPECT_EQ(readBytes(clip), before);
    dialog().reject();
}

TEST_F(Trimming, ASaveThatFailsSaysWhy)
{
    startProgram();
    open(makeClip(clipRows[1]));
    QTest::mouseClick(part<QPushButton>("trimSaveBt"), Qt::LeftButton);
    saveAs(QStringLiteral("/nonexistent/part.mov"));
    ASSERT_TRUE(waitFor([this] { return !works(); }));
    EXPECT_TRUE(dialogWords().contains(QStringLiteral("the file cannot be written there")))
        << dialogWords().toStdString();
    dialog().reject();
}

TEST_F(Trimming, AStoppedSaveLeavesNothing)
{
    startProgram();
    const QString clip = makeClip({"long.MTS", "-c:v libx264 -preset ultrafast -g 25 -c:a ac3 -f mpegts"}, "120");
    open(clip);
    QTest::mouseClick(part<QPushButton>("trimSaveBt"), Qt::LeftButton);
    saveAs(folder_.path(QStringLiteral("copy.mov")));
    ASSERT_TRUE(works());
    // The window is alive meanwhile, and stays with its work.
    preview().close();
    EXPECT_TRUE(preview().isVisible());
    QTest::mouseClick(dialog().findChild<QPushButton*>(QStringLiteral("partCancelBt")), Qt::LeftButton);
    ASSERT_TRUE(waitFor([this] { return !works(); }));
    EXPECT_EQ(dialogWords(), QStringLiteral("Stopped; nothing was saved."));
    EXPECT_FALSE(QFile::exists(folder_.path(QStringLiteral("copy.mov"))));
    EXPECT_TRUE(QDir(folder_.path()).entryList({QStringLiteral(".tavrix-*")}, QDir::Hidden | QDir::Dirs).isEmpty());
    dialog().reject();
}

TEST_F(Trimming, ARowConvertsOnlyItsPart)
{
    startProgram();
    const QStringList clips = analysedClips(1);
    BatchList& rows = window().rows();
    ASSERT_EQ(rows.count(), 1);
    // A pretended clip cannot be played; a real one takes its place.
    ASSERT_TRUE(QFile::remove(clips.first()));
    ASSERT_TRUE(QFile::copy(makeClip(clipRows[0]), clips.first()));
    open(clips.first());
    auto* convert = part<QCheckBox>("trimConvertBt");
    ASSERT_TRUE(convert->isVisible());
    EXPECT_FALSE(convert->isEnabled());
    go(1);
    key(Qt::Key_I);
    ASSERT_TRUE(convert->isEnabled());
    convert->click();
    ASSERT_TRUE(rows.row(0).part);
    EXPECT_DOUBLE_EQ(rows.row(0).part->from, *marks().from());
    EXPECT_FALSE(rows.row(0).part->to);
    // The row follows the marks.
    go(3);
    key(Qt::Key_O);
    EXPECT_DOUBLE_EQ(rows.row(0).part->to.value_or(-1), *marks().to());
    convert->click();
    EXPECT_FALSE(rows.row(0).part);
    convert->click();
    EXPECT_TRUE(rows.row(0).part);
    preview().close();
    // They are there again with the next look at the clip.
    open(clips.first());
    EXPECT_EQ(marks().part(), rows.row(0).part);
    EXPECT_TRUE(part<QCheckBox>("trimConvertBt")->isChecked());
    rows.setResultat(0, rowIcon::current);
    EXPECT_FALSE(part<QCheckBox>("trimConvertBt")->isEnabled());
    QTest::mouseClick(part<QPushButton>("trimClearBt"), Qt::LeftButton);
    EXPECT_TRUE(rows.row(0).part) << "a row that is being converted stays as it is";
}

} // namespace tavrix::test
