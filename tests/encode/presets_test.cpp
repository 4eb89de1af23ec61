// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/presets.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/alerts.h"
#include "base/store/settings.h"
#include "base/text/format.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "testpaths.h"

#include <QDir>
#include <QProcess>

namespace tavrix
{

namespace
{

using test::LogCapture;
using test::TempFolder;

struct Row {
    const char* name;
    const char* text;
    const char* options; // joined with "|"
};

class Resources
{
public:
    explicit Resources(const QString& root) : previous_(resourcePath()) { setResourcePath(root); }
    ~Resources() { setResourcePath(previous_); }
    Resources(const Resources&) = delete;
    Resources& operator=(const Resources&) = delete;

private:
    QString previous_;
};

// Remembers the last alert and answers every question by its default.
class RememberingPresenter : public AlertPresenter
{
public:
    RememberingPresenter() { setAlertPresenter(this); }
    ~RememberingPresenter() override { setAlertPresenter(nullptr); }
    RememberingPresenter(const RememberingPresenter&) = delete;
    RememberingPresenter& operator=(const RememberingPresenter&) = delete;

    AlertOutcome runModal(const AlertRequest& request) override
    {
        last = request;
        return {};
    }
    void showSheet(const AlertRequest& request, QObject* /*window*/,
                   std::function<void(AlertOutcome)> /*done*/) override
    {
        last = request;
    }
    std::optional<QString> runTextInput(const AlertRequest& /*request*/, const QString& defaultValue) override
    {
        return defaultValue;
    }

    std::optional<AlertRequest> last;
};

const QString presets = QStringLiteral("presets");
const QString file = QStringLiteral("a.ffpreset");

} // namespace

class PresetTexts : public testing::TestWithParam<Row>
{
};

TEST_P(PresetTexts, GiveOptions)
{
    EXPECT_EQ(presetOptions(test::text(GetParam().text)).join(u'|'), QString::fromUtf8(GetParam().options));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, PresetTexts,
    testing::Values(Row{"Plain", "coder=1\nbf=0\n", "-coder|1|-bf|0"}, Row{"SecondEquals", "a=b=c", "-a|b"},
                    Row{"WholeComment", "/* a=1 */", ""}, Row{"MarksInAnyOrder", "*/ a=1 /*", ""},
                    Row{"CommentBehindTheValue", "a=1 /* note", "-a|1 /* note"},
                    Row{"CommentOverLines", "/* first\nb=2\nthird */", "-b|2"}, Row{"NoEquals", "abc\n# x\n", ""},
                    Row{"NothingIsTrimmed", " a = b ", "- a | b "}, Row{"EmptyValue", "a=", "-a|"},
                    Row{"EmptyName", "=b", "-|b"}, Row{"CarriageReturns", "a=1\r\n\r\nb=2\r\n", "-a|1|-b|2"},
                    Row{"TwoDroppedLinesInARow", "x\ny\na=1\n/* */\nb=2", "-a|1|-b|2"}, Row{"Empty", "", ""},
                    Row{"Nothing", nullptr, ""}),
    test::rowName<Row>);

TEST(PresetFolder, NothingAsArgumentGivesNoValue)
{
    EXPECT_FALSE(ffpresetParserFunction(QString(), file).has_value());
    EXPECT_FALSE(ffpresetParserFunction(presets, QString()).has_value());
}

TEST(PresetFolder, FirstFolderThatExistsIsTaken)
{
    const TempFolder folder;
    const Resources resources(folder.makeFolder(QStringLiteral("res")));
    const QString support = supportFolder() + QStringLiteral("/presets");
    ASSERT_TRUE(QDir().mkpath(support));
    ASSERT_TRUE(test::writeBytes(support + u'/' + file, "a=support\n"));
    EXPECT_EQ(ffpresetParserFunction(presets, file).value_or(QStringList()).join(u'|'), QStringLiteral("-a|support"));
    folder.makeFile(QStringLiteral("res/tools/presets/a.ffpreset"), "a=tools\n");
    EXPECT_EQ(ffpresetParserFunction(presets, file).value_or(QStringList()).join(u'|'), QStringLiteral("-a|tools"));
    folder.makeFile(QStringLiteral("res/presets/a.ffpreset"), "a=resources\n");
    EXPECT_EQ(ffpresetParserFunction(presets, file).value_or(QStringList()).join(u'|'), QStringLiteral("-a|resources"));
    folder.makeFile(QStringLiteral("own/a.ffpreset"), "a=own\n");
    EXPECT_EQ(ffpresetParserFunction(folder.path(QStringLiteral("own")), file).value_or(QStringList()).join(u'|'),
              QStringLiteral("-a|own"));
    ASSERT_TRUE(QDir(support).removeRecursively());
}

TEST(PresetFolder, MissingFileIsSilentMissingFolderIsNot)
{
    const TempFolder folder;
    const Resources resources(folder.makeFolder(QStringLiteral("res")));
    const QString message = QStringLiteral("oups! Le dossier de presets n'existe pas :-( '(null)(null)'");
    {
        const LogCapture log;
        EXPECT_FALSE(ffpresetParserFunction(presets, file).has_value());
        EXPECT_TRUE(log.contains(message));
    }
    folder.makeFolder(QStringLiteral("res/tools/presets"));
    const LogCapture log;
    EXPECT_FALSE(ffpresetParserFunction(presets, file).has_value());
    EXPECT_FALSE(log.contains(message));
    folder.makeFile(QStringLiteral("res/tools/presets/a.ffpreset"), "nothing here\n");
    const auto empty = ffpresetParserFunction(presets, file);
    ASSERT_TRUE(empty.has_value());
    EXPECT_TRUE(empty->isEmpty());
}

TEST(PresetFolder, FileAndOptionsAreLogged)
{
    const TempFolder folder;
    const Resources resources(folder.makeFolder(QStringLiteral("res")));
    const QString path = folder.makeFile(QStringLiteral("res/tools/presets/a.ffpreset"), "a=1\n");
    const LogCapture log;
    const auto options = ffpresetParserFunction(presets, file);
    ASSERT_TRUE(options.has_value());
    EXPECT_TRUE(log.contains(QStringLiteral("tmpStr def : ") + path));
    EXPECT_TRUE(log.contains(formatText(QStringLiteral("returnedMArray : %@"), {*options})));
}

TEST(PresetFolder, MissingFolderAlertsWhileDebugging)
{
    const TempFolder folder;
    const Resources resources(folder.makeFolder(QStringLiteral("res")));
    RememberingPresenter presenter;
    EXPECT_FALSE(ffpresetParserFunction(presets, file).has_value());
    EXPECT_FALSE(presenter.last.has_value());
    setDEBUG(1);
    EXPECT_FALSE(ffpresetParserFunction(presets, file).has_value());
    setDEBUG(0);
    ASSERT_TRUE(presenter.last.has_value());
    EXPECT_TEXT(presenter.last->title, QStringLiteral("oups!"));
    EXPECT_TEXT(presenter.last->text, QStringLiteral("Le dossier de presets n'existe pas :-( '(null)/(null)'"));
}

// The first folder that exists hides the others: it has to hold what both passes look for.
TEST(OwnPresets, StandTogetherInTheFolderThatIsFoundFirst)
{
    const Resources resources(QStringLiteral(TAVRIX_BUILD_RESOURCES));
    for (const char* name : {"libx264-0.ffpreset", "appleSd.ffpreset"}) {
        const auto options = ffpresetParserFunction(presets, QString::fromLatin1(name));
        ASSERT_TRUE(options.has_value()) << name;
        EXPECT_FALSE(options->isEmpty()) << name;
    }
    for (const char* name : {"1280x720p", "1280x720pLetterbox"}) {
        EXPECT_TRUE(test::itemExists(resourcePath() + QStringLiteral("/presets/") + QString::fromLatin1(name))) << name;
    }
}

// The program's own presets in a real encode: an encoder that does not know an option says so.
TEST(OwnPresets, AreUnderstoodByTheInstalledEncoder)
{
    const TempFolder folder;
    const Resources resources(QStringLiteral(TAVRIX_SOURCE_DIR "/resources"));
    const QString encoder = QStringLiteral("/usr/bin/ffmpeg");
    const QString output = folder.path(QStringLiteral("o.m4v"));
    QStringList arguments = {QStringLiteral("-nostdin"),
                             QStringLiteral("-v"),
                             QStringLiteral("warning"),
                             QStringLiteral("-f"),
                             QStringLiteral("lavfi"),
                             QStringLiteral("-i"),
                             QStringLiteral("testsrc2=s=320x180:r=25:d=0.4,format=yuv422p")};
    for (const char* name : {"libx264-0.ffpreset", "appleSd.ffpreset"}) {
        const auto options = ffpresetParserFunction(presets, QString::fromLatin1(name));
        ASSERT_TRUE(options.has_value()) << name;
        EXPECT_GE(options->size(), 4) << name;
        EXPECT_EQ(options->size() % 2, 0) << name;
        arguments += *options;
    }
    // As the tool ffmpeg does.
    arguments.replaceInStrings(QStringLiteral("keyint "), QStringLiteral("keyint="));
    arguments += QStringLiteral("-vcodec libx264 -vb 1400k -maxrate 1500k -vf scale=640:368 -g 25 -y").split(u' ');
    arguments += output;
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(encoder, arguments);
    ASSERT_TRUE(process.waitForFinished(60000)) << process.errorString().toStdString();
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(QString::fromUtf8(process.readAll()), QStringLiteral(""));
    process.start(QStringLiteral("/usr/bin/ffprobe"),
                  {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"),
                   QStringLiteral("stream=profile,pix_fmt,has_b_frames"), QStringLiteral("-of"),
                   QStringLiteral("csv=p=0"), output});
    ASSERT_TRUE(process.waitForFinished(60000)) << process.errorString().toStdString();
    EXPECT_TEXT(QString::fromUtf8(process.readAll()), QStringLiteral("High,2,yuv420p\n"));
}

} // namespace tavrix
