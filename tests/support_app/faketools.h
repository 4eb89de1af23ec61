// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "judge/verdict.h"
#include "support/temphome.h"
#include "support_app/fakelauncher.h"
#include "sys/publication.h"

#include <QHash>
#include <QList>
#include <QPointer>

#include <deque>

namespace tavrix::test
{

// What the pretended ffmpeg finds in a source.
struct FakeClip {
    QString wrapper = QStringLiteral("mpegts");
    QString codec = QStringLiteral("h264");
    int width = 1280;
    int height = 720;
    QString letter = QStringLiteral("p"); // interlacing in the YUV4MPEG header; nothing: no frame file is written
    QString duration = QStringLiteral("00:00:30.00");
    QString text;        // instead of the description, unless nothing
    bool image = true;   // whether the thumbnail run makes a picture
    int kilobytes = 300; // size of an encode's output; -1 makes none
    // What an encode that ends well says of its output; no value says nothing.
    std::optional<judge::Verdict> verdict = judge::Verdict();
};

enum class ToolKind { Decode, Thumbnail, Part, Encode, SecondPass };

// Pretends to be the tools: hands out launchers, keeps a record of every launch, and does with files what the tools do.
class FakeTools
{
public:
    struct Launch {
        ToolKind kind = ToolKind::Decode;
        QStringList arguments;
        int result = 0;
        QPointer<FakeLauncher> launcher;
        publication::Terms terms;
        QString unnamed; // where the output of an encode is until it takes its name
        [[nodiscard]] QString source() const;
        // As the arguments name it.
        [[nodiscard]] QString output() const { return arguments.value(arguments.size() - 1); }
        // The name that it takes.
        [[nodiscard]] QString place() const;
    };

    [[nodiscard]] std::function<taskLauncher*()> factory();

    QHash<QString, FakeClip> clips; // by source path; others are camera clips
    std::deque<int> results;        // of the next launches, then 0
    QList<Launch> launches;
    int mostAtOnce = 0;

    [[nodiscard]] QList<Launch> running() const; // oldest first
    [[nodiscard]] int count(ToolKind kind) const;
    // The running launch of that kind; a launch without launcher when there is none.
    [[nodiscard]] Launch current(ToolKind kind) const;
    [[nodiscard]] FakeClip clipOf(const Launch& launch) const;

    // Writes what the tool would have written by now, without ending it. What it then says of an encode's output.
    QString writeFiles(const Launch& launch) const;
    // The tool's whole life: files, text and end.
    void finish(const Launch& launch, int status = 0) const;
    // Ends the running launch of that kind; false when there is none.
    bool finish(ToolKind kind, int status = 0) const;
    // Runs everything to its end, children of children too; false when it does not come to an end.
    bool finishAll(int limit = 100000) const;

private:
    int noteLaunch(FakeLauncher* launcher, const QStringList& arguments);
    [[nodiscard]] QString publish(const Launch& launch) const;

    TempFolder unnamed_;
    QHash<QString, QString> movieSources_; // output of a first pass to its source
};

// The description that the tool prints of a source.
[[nodiscard]] QString bannerOf(const FakeClip& clip, const QString& source);
// A small picture that is complete as far as its frame header.
[[nodiscard]] QByteArray tinyJpeg();
// The line by which the tools tell their verdict, with its line end.
[[nodiscard]] QString verdictText(const judge::Verdict& verdict);
// Makes a file of that size without writing it; false when that fails.
bool makeSparseFile(const QString& path, int kilobytes);
// Serves the event loop until nothing is waiting: kept deliveries, zero-delay calls, released objects.
void settle();
// The same inside of an open alert: objects that callbacks have released are still in use there.
void settleUnderAnAlert();

} // namespace tavrix::test
