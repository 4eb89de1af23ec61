// SPDX-License-Identifier: GPL-3.0-or-later
#include "support_app/faketools.h"

#include "base/text/format.h"
#include "judge/publication.h"
#include "judge/verdictline.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFile>

#include <cstdio>

namespace tavrix::test
{

namespace
{

const QString inputOption = QStringLiteral("-i");

ToolKind kindOf(const QStringList& arguments)
{
    if (arguments.first().endsWith(QLatin1String("/movencoder"))) {
        return ToolKind::SecondPass;
    }
    if (arguments.first().endsWith(QLatin1String("/tavrix-inspect"))) {
        return ToolKind::Part;
    }
    if (arguments.contains(QStringLiteral("yuv4mpegpipe"))) {
        return ToolKind::Decode;
    }
    return arguments.value(1) == QLatin1String("-vframes") ? ToolKind::Thumbnail : ToolKind::Encode;
}

QByteArray frameHeader(const QString& letter)
{
    return "YUV4MPEG2 W640 H480 F25:1 I" + letter.toUtf8() + " A0:0 C420mpeg2 XYSCSS=420MPEG2\nFRAME\n";
}

publication::Terms termsOf(const taskLauncher::Environment& environment)
{
    QHash<QString, QByteArray> values;
    for (const auto& [name, value] : environment) {
        values.insert(name, value.toUtf8());
    }
    const QByteArray replaces = values.value(QString::fromLatin1(publication::replacesVariable));
    const QByteArray place = values.value(QString::fromLatin1(publication::placeVariable));
    return publication::readTerms(replaces.isNull() ? nullptr : replaces.constData(),
                                  place.isNull() ? nullptr : place.constData());
}

} // namespace

QString FakeTools::Launch::place() const
{
    return terms.place.empty() ? output() : QString::fromStdString(terms.place);
}

QString FakeTools::Launch::source() const
{
    if (kind == ToolKind::Part) {
        return arguments.constLast();
    }
    const qsizetype at = arguments.indexOf(inputOption);
    return at < 0 ? arguments.value(arguments.size() - 2) : arguments.value(at + 1);
}

std::function<taskLauncher*()> FakeTools::factory()
{
    return [this] {
        return new FakeLauncher(
            [this](FakeLauncher* launcher, const QStringList& arguments) { return noteLaunch(launcher, arguments); });
    };
}

int FakeTools::noteLaunch(FakeLauncher* launcher, const QStringList& arguments)
{
    Launch launch;
    launch.kind = kindOf(arguments);
    launch.arguments = arguments;
    if (!results.empty()) {
        launch.result = results.front();
        results.pop_front();
    }
    launch.launcher = launch.result == 0 ? launcher : nullptr;
    if (launch.kind == ToolKind::Encode) {
        movieSources_.insert(launch.output(), launch.source());
    }
    const bool encodes = launch.kind == ToolKind::Encode || launch.kind == ToolKind::SecondPass;
    if (encodes && launch.launcher) {
        launch.terms = termsOf(launcher->environment());
        launch.unnamed = unnamed_.path(QString::number(launches.size()));
        makeSparseFile(launch.unnamed, 0);
        const auto status = linkStatus(qPrintable(launch.unnamed));
        launcher->setFirstWords(QString::fromStdString(publication::outputLine(*status)) + QLatin1Char('\n'));
    }
    launches << launch;
    mostAtOnce = qMax(mostAtOnce, static_cast<int>(running().size()));
    return launch.result;
}

QList<FakeTools::Launch> FakeTools::running() const
{
    QList<Launch> found;
    for (const Launch& launch : launches) {
        if (launch.launcher && launch.launcher->isRunning() && !launch.launcher->isEnding()) {
            found << launch;
        }
    }
    return found;
}

int FakeTools::count(ToolKind kind) const
{
    int found = 0;
    for (const Launch& launch : launches) {
        found += launch.kind == kind ? 1 : 0;
    }
    return found;
}

FakeTools::Launch FakeTools::current(ToolKind kind) const
{
    for (const Launch& launch : running()) {
        if (launch.kind == kind) {
            return launch;
        }
    }
    return {};
}

FakeClip FakeTools::clipOf(const Launch& launch) const
{
    const bool secondPass = launch.kind == ToolKind::SecondPass;
    return clips.value(secondPass ? movieSources_.value(launch.output()) : launch.source());
}

// As the tools do: their file has been there from the start, and takes its name only where it may.
QString FakeTools::publish(const Launch& launch) const
{
    const FakeClip clip = clipOf(launch);
    const QByteArray place = launch.place().toUtf8();
    QFile file(launch.unnamed);
    if (clip.kilobytes < 0 || !file.open(QIODevice::ReadWrite)) {
        return {};
    }
    const qint64 bytes = qint64{clip.kilobytes} * 1024;
    file.resize(bytes);
    const judge::Verdict verdict =
        judge::besideOlder(clip.verdict.value_or(judge::Verdict()), place.toStdString(), bytes, launch.terms);
    if (verdict.outcome != judge::Outcome::Failed) {
        std::rename(qPrintable(launch.unnamed), place.constData());
    }
    return clip.verdict ? verdictText(verdict) : QString();
}

QString FakeTools::writeFiles(const Launch& launch) const
{
    const FakeClip clip = clipOf(launch);
    if (launch.kind == ToolKind::Decode) {
        if (!clip.letter.isNull()) {
            writeBytes(launch.output(), frameHeader(clip.letter));
        }
    } else if (launch.kind == ToolKind::Thumbnail) {
        if (clip.image) {
            writeBytes(launch.output(), tinyJpeg());
        }
    } else if (launch.kind == ToolKind::Part) {
        const std::optional<judge::Verdict> verdict = clipOf(launch).verdict;
        const bool failed = verdict && verdict->outcome == judge::Outcome::Failed;
        if (!failed) {
            makeSparseFile(launch.arguments.value(launch.arguments.indexOf(QStringLiteral("--output")) + 1), 100);
        }
        return verdict ? verdictText(*verdict) : QString();
    } else {
        return publish(launch);
    }
    return {};
}

void FakeTools::finish(const Launch& launch, int status) const
{
    if (!launch.launcher) {
        return;
    }
    const QString said = writeFiles(launch);
    if (status == 0 && !said.isEmpty()) {
        launch.launcher->write(said);
    }
    if (launch.kind == ToolKind::Decode) {
        const FakeClip clip = clipOf(launch);
        const QString text = clip.text.isNull() ? bannerOf(clip, launch.source()) : clip.text;
        if (!text.isEmpty()) {
            launch.launcher->write(text);
        }
    }
    // The text may have had any consequence.
    if (launch.launcher) {
        launch.launcher->end(status);
    }
}

bool FakeTools::finish(ToolKind kind, int status) const
{
    const Launch launch = current(kind);
    if (!launch.launcher) {
        return false;
    }
    finish(launch, status);
    settle();
    return true;
}

bool FakeTools::finishAll(int limit) const
{
    settle();
    for (int i = 0; i < limit; ++i) {
        const QList<Launch> left = running();
        if (left.isEmpty()) {
            return true;
        }
        finish(left.last());
        settle();
    }
    return false;
}

QString bannerOf(const FakeClip& clip, const QString& source)
{
    return formatText(QStringLiteral("FFmpeg version git-N-23134-gabcdef, Copyright (c) 2000-2010\n"
                                     "Input #0, %@, from '%@':\n"
                                     "  Duration: %@, start: 0.300000, bitrate: 17000 kb/s\n"
                                     "    Stream #0.0[0x1011]: Video: %@, yuv420p, %dx%d [PAR 1:1 DAR 16:9], 25 fps, "
                                     "25 tbr, 90k tbn, 50 tbc\n"
                                     "    Stream #0.1[0x1100]: Audio: ac3, 48000 Hz, stereo, s16, 192 kb/s\n"
                                     "Output #0, yuv4mpegpipe, to 'frame.yuv':\n"),
                      {clip.wrapper, source, clip.duration, clip.codec, clip.width, clip.height});
}

QByteArray tinyJpeg()
{
    return QByteArray::fromHex("ffd8ffe000104a46494600010100000100010000"
                               "ffc0000b080001000101011100ffd9");
}

QString verdictText(const judge::Verdict& verdict)
{
    return QString::fromStdString(judge::verdictLine(verdict)) + QLatin1Char('\n');
}

bool makeSparseFile(const QString& path, int kilobytes)
{
    // A new file each time, as the tools' own outputs are.
    QFile::remove(path);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.resize(qint64{kilobytes} * 1024);
}

void settleUnderAnAlert()
{
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::sendPostedEvents();
    }
}

void settle()
{
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

} // namespace tavrix::test
