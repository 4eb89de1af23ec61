// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/jsonreporter.h"
#include "console/textreporter.h"

#include "consoletest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

RowReport doneRow()
{
    return {text("/c/00001.MTS"), text("/d/Tavrix events/2010-07-14.mov"), {}, 12345678, true};
}

RowReport failedRow()
{
    return {text("/c/00002.MTS"), {}, text("No space left on device"), 0, false};
}

QVariantMap clipRecord()
{
    return {{text("v0_codec"), text("h264")}, {text("v0_width"), 1280}, {text("v0_height"), 720}};
}

using TextReporterTest = ConsoleTest;

TEST_F(TextReporterTest, tellsClipsOfOneNameApartAndCountsWhatWasKeptAndNotBegun)
{
    TextStream stream;
    TextReporter reporter(stream.file(), false);
    for (const char* path : {"/one/00001.MTS", "/two/00001.MTS", "/one/00002.MTS"}) {
        reporter.accepted(text(path), clipRecord());
    }
    RowReport twin = failedRow();
    twin.source = text("/two/00001.MTS");
    reporter.rowFinished(1, 3, twin);
    RowReport kept = failedRow();
    kept.reason = text("kept");
    kept.kept = true;
    reporter.summary({doneRow(), twin, kept}, {4, 133}, text("/d"), 1);
    const QStringList lines = stream.lines();
    EXPECT_TRUE(lines.contains(text("FAILED 1/3: two/00001.MTS: No space left on device")));
    EXPECT_TRUE(lines.contains(text("1 done, 0 incomplete, 1 failed, 4 left out, 1 kept, 133 not begun")));
    EXPECT_TRUE(lines.contains(text("  FAILED two/00001.MTS: No space left on device")));
    EXPECT_TRUE(lines.contains(text("  Kept 00002.MTS: kept")));
}

TEST_F(TextReporterTest, writesLinesWhereThereIsNoTerminal)
{
    TextStream stream;
    TextReporter reporter(stream.file(), false);
    reporter.queued(3);
    reporter.rejected(text("/c/notes.txt"), text("no clip"));
    reporter.analysing(text("/c/00001.MTS"), 1, 3);
    reporter.accepted(text("/c/00001.MTS"), clipRecord());
    reporter.analysing(text("/c/odd.mov"), 2, 3);
    reporter.accepted(text("/c/odd.mov"), {});
    reporter.analysing(text("/c/film.avi"), 3, 3);
    reporter.rejected(text("/c/film.avi"), text("1920x1080 is larger than 1280x720"));
    reporter.rowStarted(1, 2, text("00001.MTS"), std::nullopt);
    reporter.rowProgress({5, 10, 1, 1, 0.5});
    reporter.rowFinished(1, 2, doneRow());
    reporter.rowStarted(2, 2, text("00002.MTS"), std::nullopt);
    reporter.rowFinished(2, 2, failedRow());
    reporter.summary({doneRow(), failedRow()}, 1, text("/d/Tavrix events"), 1);
    EXPECT_TEXTS(
        stream.lines(),
        QStringList({text("3 sources to analyse"), text("notes.txt: left out: no clip"),
                     text("1/3 00001.MTS: H.264 · 1280 × 720"),
                     text("2/3 odd.mov: not readable as a clip; the summary will say why"),
                     text("3/3 film.avi: left out: 1920x1080 is larger than 1280x720"), text("Encoding 1/2: 00001.MTS"),
                     text("Done 1/2: 00001.MTS (12 MB)"), text("Encoding 2/2: 00002.MTS"),
                     text("FAILED 2/2: 00002.MTS: No space left on device"), text(""),
                     text("1 done, 0 incomplete, 1 failed, 1 left out"),
                     text("  /d/Tavrix events/2010-07-14.mov  12 MB"),
                     text("  FAILED 00002.MTS: No space left on device"), text("Outputs are in /d/Tavrix events")}));
}

TEST_F(TextReporterTest, namesNoFolderWhenNothingWasMade)
{
    TextStream stream;
    TextReporter reporter(stream.file(), false);
    reporter.summary({failedRow()}, 0, text("/d/Tavrix events"), 1);
    EXPECT_FALSE(stream.text().contains(text("/d/")));
}

TEST_F(TextReporterTest, hasNothingToSumUpWithoutSources)
{
    TextStream stream;
    TextReporter reporter(stream.file(), false);
    reporter.summary({}, 0, text("/d/Tavrix events"), 3);
    EXPECT_TEXT(stream.text(), text(""));
}

TEST_F(TextReporterTest, saysInQuietOnlyWhatIsWrong)
{
    TextStream stream;
    TextReporter reporter(stream.file(), true, Verbosity::Quiet);
    RowReport kept = failedRow();
    kept.kept = true;
    RowReport warned = doneRow();
    warned.warning = text("Incomplete: cut off");
    warned.incomplete = true;
    reporter.queued(2);
    reporter.analysing(text("/c/00001.MTS"), 1, 3);
    reporter.accepted(text("/c/00001.MTS"), clipRecord());
    reporter.rowStarted(1, 2, text("00001.MTS"), std::nullopt);
    reporter.rowProgress({10, 10, 1, 1, 1});
    reporter.rowFinished(1, 2, doneRow());
    reporter.rowFinished(2, 2, kept);
    reporter.notice(text("The batch has ended"), QString());
    reporter.summary({doneRow(), kept}, 0, text("/d"), 0);
    EXPECT_TEXT(stream.text(), text(""));
    reporter.rejected(text("/c/b.avi"), text("too large"));
    reporter.rowFinished(1, 2, failedRow());
    reporter.rowFinished(2, 2, warned);
    reporter.summary({failedRow(), warned}, 1, text("/d"), 1);
    EXPECT_TEXTS(stream.lines(), QStringList({text("1/3 b.avi: left out: too large"),
                                              text("FAILED 1/2: 00002.MTS: No space left on device"),
                                              text("Done 2/2: 00001.MTS (12 MB)"), text("  Incomplete: cut off"),
                                              text("0 done, 1 incomplete, 1 failed, 1 left out")}));
}

TEST_F(TextReporterTest, saysMoreWhenAskedTo)
{
    TextStream stream;
    TextReporter reporter(stream.file(), false, Verbosity::Verbose);
    QVariantMap infos = clipRecord();
    infos.insert(record::recordingDate, text("2012-07-01 12:34:56 +0200"));
    reporter.accepted(text("/c/00001.MTS"), infos);
    reporter.rowStarted(1, 1, text("00001.MTS"), std::nullopt);
    reporter.rowProgress({0, 0, 1, 2, 0});
    reporter.rowProgress({5, 10, 1, 2, 0.5});
    reporter.rowProgress({0, 10, 2, 2, 0});
    reporter.rowFinished(1, 1, doneRow());
    EXPECT_TEXTS(
        stream.lines().mid(1),
        QStringList({text("  recorded 2012-07-01 12:34:56 +0200"), text("Encoding 1/1: 00001.MTS"),
                     text("  Step 1 of 2"), text("  Step 2 of 2"), text("Done 1/1: 00001.MTS (12 MB)  in 0:00")}));
}

TEST_F(TextReporterTest, aKeptOutputIsNoFailure)
{
    TextStream stream;
    TextReporter reporter(stream.file(), false);
    RowReport kept = failedRow();
    kept.kept = true;
    reporter.rowFinished(1, 1, kept);
    EXPECT_TEXTS(stream.lines(), QStringList({text("Kept 1/1: 00002.MTS: No space left on device")}));
}

TEST_F(TextReporterTest, listsWhatWouldBeMade)
{
    TextStream stream;
    TextReporter reporter(stream.file(), false);
    PlannedRow first = {1, 3, text("/c/00001.MTS"), text("/d/Tavrix events/clip-1.mov"), 3, 36100000};
    PlannedRow second = {2, 3, text("/c/00002.MTS"), text("/d/Tavrix events/clip-1.mov"), 5, -1, false, true};
    PlannedRow third = {3, 3, text("/c/odd.MOV"), text("/d/Tavrix events/odd.mov"), 3, -1, true, false, false};
    reporter.plan({first, second, third}, 1, text("/d/Tavrix events"), 0);
    EXPECT_TEXTS(stream.lines(),
                 QStringList({text("1/3 00001.MTS: QuickTime, about 36 MB, becomes clip-1.mov"),
                              text("2/3 00002.MTS: ProRes, becomes clip-1.mov"),
                              text("  another clip of this batch gets the same name: only the first is converted"),
                              text("3/3 odd.MOV: QuickTime, becomes odd.mov"),
                              text("  could not be read as a clip: it would fail"), text(""),
                              text("3 clips would be converted, about 36 MB; 1 left out"),
                              text("Outputs would be in /d/Tavrix events")}));
}

struct MessageCase {
    const char* name;
    const char* title;
    const char* text;
    const char* answer;
    const char* expected;
};

class TextMessages : public ConsoleTest, public testing::WithParamInterface<MessageCase>
{
};

TEST_P(TextMessages, areOneLine)
{
    TextStream stream;
    TextReporter reporter(stream.file(), false);
    reporter.message(text(GetParam().title), text(GetParam().text), text(GetParam().answer));
    EXPECT_TEXTS(stream.lines(), QStringList({text(GetParam().expected)}));
}

const MessageCase messageCases[] = {
    {"titleOnly", "Over", nullptr, nullptr, "Over"},
    {"titleAndText", "a.mov", "Replace?", nullptr, "a.mov: Replace?"},
    {"withAnswer", "a.mov", "Replace?", "Keep", "a.mov: Replace? [Keep]"},
    {"theSameTwice", "Keep", "Keep", nullptr, "Keep"},
    {"percentSigns", "%@ %1 %s", "%d", nullptr, "%@ %1 %s: %d"},
};

INSTANTIATE_TEST_SUITE_P(Messages, TextMessages, testing::ValuesIn(messageCases), rowName<MessageCase>);

TEST_F(TextReporterTest, redrawsItsBarInPlaceOnATerminal)
{
    TextStream stream;
    TextReporter reporter(stream.file(), true);
    reporter.rowStarted(1, 1, text("00001.MTS"), std::nullopt);
    const QString begin = stream.text();
    EXPECT_TRUE(begin.startsWith(text("\r\033[K1/1 00001.MTS")));
    EXPECT_TRUE(begin.contains(text("[....")));
    EXPECT_TRUE(begin.contains(text("  0 %")));
    EXPECT_FALSE(begin.contains(u'\n'));
    reporter.rowProgress({10, 10, 1, 1, 1});
    const QString end = stream.text().mid(begin.size());
    EXPECT_TRUE(end.startsWith(text("\r\033[K1/1 ")));
    EXPECT_TRUE(end.contains(text("####]")));
    EXPECT_TRUE(end.contains(text("100 %")));
    const qsizetype drawn = stream.text().size();
    reporter.rowFinished(1, 1, doneRow());
    EXPECT_TEXT(stream.text().mid(drawn), text("\r\033[KDone 1/1: 00001.MTS (12 MB)\n"));
}

TEST_F(TextReporterTest, doesNotRedrawForEveryStep)
{
    TextStream stream;
    TextReporter reporter(stream.file(), true);
    reporter.rowStarted(1, 1, text("00001.MTS"), std::nullopt);
    for (int i = 0; i < 1000; ++i) {
        reporter.rowProgress({static_cast<float>(i), 1000, 1, 1, i / 1000.0});
    }
    EXPECT_LT(stream.text().count(text("\r\033[K")), 200);
}

TEST_F(TextReporterTest, isNotSteeredByNames)
{
    const QString evil = text("a\x1b]0;x\x07\x1b[2J\nb.mts");
    TextStream stream;
    TextReporter reporter(stream.file(), false);
    RowReport row = {evil, text("/d/") + evil, {}, 300000, true};
    reporter.analysing(evil, 1, 1);
    reporter.accepted(evil, clipRecord());
    reporter.rejected(evil, evil);
    reporter.rowStarted(1, 1, evil, std::nullopt);
    reporter.rowFinished(1, 1, row);
    reporter.message(evil, evil + evil, evil);
    row.success = false;
    row.reason = evil;
    reporter.rowFinished(1, 1, row);
    row.success = true;
    reporter.summary({row}, 0, text("/d\x1b"), 0);
    const QString written = stream.text();
    EXPECT_FALSE(written.contains(u'\x1b'));
    EXPECT_FALSE(written.contains(u'\x07'));
    EXPECT_TRUE(written.contains(text("/d\\x1b")));
    EXPECT_EQ(written.count(u'\n'), 10) << "one line a call, four for the summary";
}

class JsonReporterTest : public ConsoleTest
{
protected:
    QJsonObject last() const
    {
        const QStringList lines = stream.lines();
        return lines.isEmpty() ? QJsonObject() : QJsonDocument::fromJson(lines.last().toUtf8()).object();
    }
    static QJsonObject object(const char* json) { return QJsonDocument::fromJson(json).object(); }

    TextStream stream;
    JsonReporter reporter{stream.file()};
};

TEST_F(JsonReporterTest, writesOneObjectALine)
{
    reporter.queued(3);
    EXPECT_EQ(last(), object(R"({"event":"queued","count":3})"));
    reporter.analysing(text("/c/00001.MTS"), 1, 3);
    EXPECT_EQ(last(), object(R"({"event":"analysing","source":"/c/00001.MTS","number":1,"total":3})"));
    reporter.rejected(text("/c/film.avi"), text("too \"large\"\n"));
    EXPECT_EQ(last(), object(R"({"event":"rejected","source":"/c/film.avi","reason":"too \"large\"\n"})"));
    reporter.rowStarted(2, 3, text("été.mts"), std::nullopt);
    EXPECT_EQ(last(), object(R"({"event":"row-started","row":2,"total":3,"source":"été.mts"})"));
    reporter.rowProgress({1.5, 30, 1, 1, 0.05});
    EXPECT_EQ(last(), object(R"({"event":"progress","row":2,"value":1.5,"maximum":30,"pass":1,"passes":1,
                                 "fraction":0.05})"));
    reporter.rowProgress({30, 30, 2, 2, 0.47123, 3.1416, 65.4});
    EXPECT_EQ(last(), object(R"({"event":"progress","row":2,"value":30,"maximum":30,"pass":2,"passes":2,
                                 "fraction":0.4712,"speed":3.14,"left":65})"));
    reporter.rowFinished(2, 3, failedRow());
    EXPECT_EQ(last(), object(R"({"event":"row-finished","row":2,"total":3,"source":"/c/00002.MTS","success":false,
                                 "reason":"No space left on device"})"));
    reporter.rowFinished(3, 3, doneRow());
    EXPECT_EQ(last(), object(R"({"event":"row-finished","row":3,"total":3,"source":"/c/00001.MTS","success":true,
                                 "output":"/d/Tavrix events/2010-07-14.mov","bytes":12345678})"));
    reporter.message(text("title"), text("words"), text("Keep"));
    EXPECT_EQ(last(), object(R"({"event":"message","title":"title","text":"words","answer":"Keep"})"));
    EXPECT_EQ(stream.lines().size(), 9);
}

// A terminal that shows the lines must not obey them; a reader gets the name as it is.
TEST_F(JsonReporterTest, steersNoTerminalAndKeepsNames)
{
    const QString evil = text("a\x1b[2J\u202e\u2028\nb.mts");
    reporter.rejected(evil, evil);
    EXPECT_EQ(last().value(text("source")).toString(), evil);
    const QString line = stream.lines().first();
    EXPECT_TRUE(line.contains(text("a\\u001b[2J\\u202e\\u2028\\nb.mts"))) << line.toStdString();
}

TEST_F(JsonReporterTest, endsWithAllRows)
{
    reporter.summary({doneRow(), failedRow()}, 2, text("/d/Tavrix events"), 1);
    EXPECT_EQ(last(),
              object(R"({"event":"end","leftOut":2,"notBegun":0,"folder":"/d/Tavrix events","exitCode":1,"rows":[
        {"source":"/c/00001.MTS","success":true,"output":"/d/Tavrix events/2010-07-14.mov","bytes":12345678},
        {"source":"/c/00002.MTS","success":false,"reason":"No space left on device"}]})"));
}

TEST_F(JsonReporterTest, listsWhatWouldBeMade)
{
    reporter.plan({{1, 1, text("/c/00001.MTS"), text("/d/Tavrix events/clip-1.mov"), 3, 36100000, true}}, 2,
                  text("/d/Tavrix events"), 0);
    const QStringList lines = stream.lines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(QJsonDocument::fromJson(lines.first().toUtf8()).object(),
              object(R"({"event":"planned","row":1,"total":1,"source":"/c/00001.MTS","format":3,"bytes":36100000,
                         "output":"/d/Tavrix events/clip-1.mov","exists":true,"sameName":false,"readable":true})"));
    EXPECT_EQ(last(), object(R"({"event":"end","leftOut":2,"notBegun":0,"folder":"/d/Tavrix events","exitCode":0,
                                 "rows":[]})"));
}

TEST_F(JsonReporterTest, showsFloatsShort)
{
    reporter.accepted(text("/c/00001.MTS"), {{text("v0_fps"), 59.94F}, {text("w_duration"), 29.5F}, {text("out"), 3}});
    EXPECT_TRUE(stream.text().contains(text("\"v0_fps\":59.94,"))) << stream.text().toStdString();
    EXPECT_EQ(last().value(text("record")).toObject().value(text("out")).toInt(), 3);
}

TEST_F(JsonReporterTest, showsProgressShort)
{
    reporter.rowProgress({0.02F, 60.1F, 1, 1, 1.0 / 3});
    EXPECT_TRUE(stream.text().contains(text("\"maximum\":60.1,"))) << stream.text().toStdString();
    EXPECT_TRUE(stream.text().contains(text("\"fraction\":0.3333,"))) << stream.text().toStdString();
}

// Whoever renames a key inside the program must not break scripts, and inner paths are nobody's business.
TEST_F(JsonReporterTest, publishesTheDocumentedKeysOnly)
{
    MediaInfoRecord infos;
    const QStringList documented = {text("wrapper"),    text("w_duration"),  text("w_offset"),  text("w_bitrate"),
                                    text("v0_codec"),   text("v0_width"),    text("v0_height"), text("v0_fps"),
                                    text("v0_aspect"),  text("v0_bitrate"),  text("v0_par"),    text("v0_dar"),
                                    text("v0_chroma"),  text("a0_codec"),    text("a0_lang"),   text("a0_rate"),
                                    text("a0_bitrate"), text("a0_channels"), text("out")};
    for (const QString& key : documented) {
        infos.insert(key, 1);
    }
    for (const QString& key : {record::mainEncSrcPathStr, record::imgPathStr, record::dstPathStr, text("v0_id")}) {
        infos.insert(key, text("/inner"));
    }
    reporter.accepted(text("/c/00001.MTS"), infos);
    QStringList published = last().value(text("record")).toObject().keys();
    QStringList expected = documented;
    published.sort();
    expected.sort();
    EXPECT_TEXTS(published, expected);
}

TEST_F(JsonReporterTest, keepsSizesBeyondThirtyTwoBits)
{
    RowReport row = doneRow();
    row.bytes = 5000000000;
    reporter.rowFinished(1, 1, row);
    EXPECT_EQ(last().value(text("bytes")).toInteger(), 5000000000);
}

} // namespace
