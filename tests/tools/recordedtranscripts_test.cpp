// SPDX-License-Identifier: GPL-3.0-or-later
// Recordings of real runs of Debian 11, 12 and 13's ffmpeg (see make-fixtures.sh), each with the transcript that the
// tool makes of it. No Debian has had version 6: its lines are rows of transcriptlines_test.cpp, written by hand.
#include "tools/ffmpeg/linesplitter.h"
#include "tools/ffmpeg/transcript.h"

#include "probe/ffinfos.h"
#include "probe/ffprobes.h"
#include "probe/mediainforecord.h"
#include "support/qtprinters.h"
#include "testpaths.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace tavrix
{

using namespace Qt::StringLiterals;

namespace
{

constexpr const char* versions[] = {"4.3", "5.1", "7.1"};

std::string dataPath(const std::string& version, const std::string& name)
{
    return std::string(TAVRIX_SOURCE_DIR) + "/tests/tools/data/ffmpeg-" + version + "/" + name;
}

std::string contents(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.good()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

struct Recording {
    std::string name;
    std::string input;
    std::string output; // empty: none
    int status = 1;
    bool levelsMarked = false;
    bool device = false;
    std::string version = {};
    [[nodiscard]] std::string path(const char* kind) const { return dataPath(version, name + kind); }
};

void PrintTo(const Recording& recording, std::ostream* stream)
{
    *stream << recording.version << " " << recording.name;
}

std::string translated(const Recording& recording, std::size_t pieceSize)
{
    const std::string outputUrl = recording.device ? "file:" + recording.output : "file:/proc/self/fd/9";
    front::TranscriptNames names{{{"file:" + recording.input, recording.input}}, {}};
    if (!recording.output.empty()) {
        names.outputs.push_back({outputUrl, recording.output});
    }
    front::Transcript transcript(names, recording.levelsMarked);
    std::string text;
    const auto add = [&](const std::vector<front::TranscriptLine>& lines) {
        for (const front::TranscriptLine& line : lines) {
            text += line.text + line.end;
        }
    };
    front::LineSplitter splitter([&](std::string_view line, char end) { add(transcript.translate(line, end)); });
    const std::string installed = contents(recording.path(".installed"));
    for (std::size_t i = 0; i < installed.size(); i += pieceSize) {
        splitter.feed(std::string_view(installed).substr(i, pieceSize));
    }
    splitter.finish();
    add(transcript.finish(recording.status));
    return text;
}

class RecordedTranscript : public testing::TestWithParam<Recording>
{
};

TEST_P(RecordedTranscript, IsInTheClassicDialect)
{
    const std::string classic = translated(GetParam(), 65536);
    const std::string path = GetParam().path(".classic");
    if (std::getenv("TAVRIX_ACCEPT_TRANSCRIPTS") != nullptr) {
        std::ofstream(path, std::ios::binary) << classic;
    }
    EXPECT_EQ(classic, contents(path));
}

TEST_P(RecordedTranscript, DoesNotDependOnHowTheBytesArrive)
{
    EXPECT_EQ(translated(GetParam(), 1), translated(GetParam(), 65536));
    EXPECT_EQ(translated(GetParam(), 7), translated(GetParam(), 65536));
}

// The same runs of each version.
std::vector<Recording> ofEachVersion(const std::vector<Recording>& runs)
{
    std::vector<Recording> all;
    for (const char* version : versions) {
        for (Recording recording : runs) {
            recording.version = version;
            all.push_back(std::move(recording));
        }
    }
    return all;
}

const std::vector<Recording>& clips()
{
    static const std::vector<Recording> list = {
        {"clip.MTS", "clip.MTS", ""},
        {"clip.m2ts", "clip.m2ts", ""},
        {"clip.mov", "clip.mov", ""},
        {"clip.mp4", "clip.mp4", ""},
        {"clip.avi", "clip.avi", ""},
        {"clip.mpg", "clip.mpg", ""},
        {"clip.dv", "clip.dv", ""},
        {"languages.MTS", "languages.MTS", ""},
        {"silent.mov", "silent.mov", ""},
        {"data-and-subtitles.mov", "data-and-subtitles.mov", ""},
        {"pcm24.mov", "pcm24.mov", ""},
        {"sound-only.wav", "sound-only.wav", ""},
        {"truncated.MTS", "truncated.MTS", ""},
    };
    return list;
}

const std::vector<Recording>& runs()
{
    static const std::vector<Recording> list = {
        {"analysis", "clip.MTS", "out.mp4", 0},
        {"thumbnail", "clip.MTS", "out.jpg", 0},
        {"small", "clip.MTS", "out.mp4", 0},
        {"rewrap", "clip.MTS", "out.mov", 0},
        {"duration", "clip.mpg", "/dev/null", 0, false, true},
        {"sound", "clip.MTS", "/dev/null", 0, false, true},
        {"vsync", "clip.MTS", "/dev/null", 0, true, true},
        {"unknown-option", "clip.MTS", "out.mp4"},
    };
    return list;
}

const std::vector<Recording>& failures()
{
    static const std::vector<Recording> list = {
        {"failed-empty_MTS", "empty.MTS", ""},   {"failed-broken_MTS", "broken.MTS", ""},
        {"failed-short_MTS", "short.MTS", ""},   {"failed-truncated_mov", "truncated.mov", ""},
        {"failed-nosuch_MTS", "nosuch.MTS", ""}, {"failed-_", ".", ""},
    };
    return list;
}

std::string testName(const testing::TestParamInfo<Recording>& info)
{
    std::string name = "of" + info.param.version + "_" + info.param.name;
    for (char& c : name) {
        if (std::isalnum(static_cast<unsigned char>(c)) == 0) {
            c = '_';
        }
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Clips, RecordedTranscript, testing::ValuesIn(ofEachVersion(clips())), testName);
INSTANTIATE_TEST_SUITE_P(Runs, RecordedTranscript, testing::ValuesIn(ofEachVersion(runs())), testName);
INSTANTIATE_TEST_SUITE_P(Failures, RecordedTranscript, testing::ValuesIn(ofEachVersion(failures())), testName);

// What the parser reads in the transcript, against what ffprobe says of the same clip.
class RecordedClip : public testing::TestWithParam<Recording>
{
protected:
    static QJsonObject probed(const Recording& recording)
    {
        const std::string json = contents(recording.path(".json"));
        return QJsonDocument::fromJson(QByteArray::fromStdString(json)).object();
    }
    static double ratio(const QString& text)
    {
        const QStringList parts = text.split(u'/');
        return parts.value(0).toDouble() / parts.value(1).toDouble();
    }
    void expectVideo(const QString& prefix, const QJsonObject& stream)
    {
        const auto value = [&](const char* key) {
            return record_.value(prefix + QLatin1String(key));
        };
        EXPECT_EQ(value("codec").toString(), stream.value(u"codec_name").toString());
        EXPECT_EQ(value("id").toInt(), stream.value(u"index").toInt());
        EXPECT_EQ(value("width").toInt(), stream.value(u"width").toInt());
        EXPECT_EQ(value("height").toInt(), stream.value(u"height").toInt());
        EXPECT_EQ(value("chroma").toString(), stream.value(u"pix_fmt").toString());
        EXPECT_NEAR(value("fps").toDouble(), ratio(stream.value(u"r_frame_rate").toString()), 0.01);
        EXPECT_EQ(value("par").toString(), stream.value(u"sample_aspect_ratio").toString());
        EXPECT_EQ(value("dar").toString(), stream.value(u"display_aspect_ratio").toString());
        EXPECT_GE(value("tbc").toInt(), static_cast<int>(value("fps").toDouble()));
    }
    void expectAudio(const QString& prefix, const QJsonObject& stream, bool first)
    {
        const auto value = [&](const char* key) {
            return record_.value(prefix + QLatin1String(key));
        };
        EXPECT_EQ(value("codec").toString(), stream.value(u"codec_name").toString());
        EXPECT_EQ(value("id").toInt(), stream.value(u"index").toInt());
        EXPECT_EQ(value("rate").toInt(), stream.value(u"sample_rate").toString().toInt());
        if (first) {
            EXPECT_EQ(value("channels").toInt(), stream.value(u"channels").toInt());
        }
    }
    void expectContainer(const QJsonObject& format)
    {
        EXPECT_EQ(record_.value(u"wrapper"_s).toString(), format.value(u"format_name").toString());
        const double duration = format.value(u"duration").toString().toDouble();
        const int shown = static_cast<int>(std::round(duration * 100) / 100); // the transcript tells hundredths
        EXPECT_EQ(record_.value(u"w_duration"_s).toInt(), shown);
        EXPECT_NEAR(record_.value(u"w_offset"_s).toDouble(), format.value(u"start_time").toString().toDouble(), 1e-4);
        EXPECT_EQ(record_.value(u"w_bitrate"_s).toInt(), format.value(u"bit_rate").toString().toInt() / 1000);
    }

    MediaInfoRecord record_;
};

TEST_P(RecordedClip, IsReadAsFfprobeReadsIt)
{
    const QString transcript = QString::fromStdString(contents(GetParam().path(".classic")));
    EXPECT_TRUE(ffmpegSuccess(transcript));
    const auto record = ffInfos(QString(), transcript);
    ASSERT_TRUE(record.has_value());
    record_ = *record;
    const QJsonObject json = probed(GetParam());
    expectContainer(json.value(u"format").toObject());
    int video = 0;
    int audio = 0;
    for (const QJsonValue entry : json.value(u"streams").toArray()) {
        const QJsonObject stream = entry.toObject();
        const QString type = stream.value(u"codec_type").toString();
        SCOPED_TRACE(type.toStdString() + " stream");
        if (type == u"video") {
            expectVideo(u"v"_s + QString::number(video++) + u'_', stream);
        } else if (type == u"audio") {
            expectAudio(u"a"_s + QString::number(audio) + u'_', stream, audio == 0);
            ++audio;
        }
    }
    EXPECT_FALSE(record_.contains(u"v"_s + QString::number(video) + u"_codec"_s));
    EXPECT_FALSE(record_.contains(u"a"_s + QString::number(audio) + u"_codec"_s));
}

INSTANTIATE_TEST_SUITE_P(Clips, RecordedClip, testing::ValuesIn(ofEachVersion(clips())), testName);

class RecordedFailure : public testing::TestWithParam<Recording>
{
};

TEST_P(RecordedFailure, IsNoSuccessForTheProgram)
{
    const QString transcript = QString::fromStdString(contents(GetParam().path(".classic")));
    const bool missing = GetParam().input == "nosuch.MTS"; // told, but not one of the failures that are looked for
    EXPECT_EQ(ffmpegSuccess(transcript), missing);
}

INSTANTIATE_TEST_SUITE_P(Failures, RecordedFailure, testing::ValuesIn(ofEachVersion(failures())), testName);

TEST(RecordedTranscripts, LanguagesAreReadFromATransportStream)
{
    for (const char* version : versions) {
        SCOPED_TRACE(version);
        const std::string transcript = contents(dataPath(version, "languages.MTS.classic"));
        const auto record = ffInfos(QString(), QString::fromStdString(transcript));
        ASSERT_TRUE(record.has_value());
        EXPECT_EQ(record->value(u"a0_lang"_s).toString(), u"eng");
        EXPECT_EQ(record->value(u"a1_lang"_s).toString(), u"fre");
        EXPECT_EQ(record->value(u"a2_lang"_s).toString(), u"deu");
        EXPECT_EQ(record->value(u"a0_channels"_s).toInt(), 6);
    }
}

} // namespace

} // namespace tavrix
