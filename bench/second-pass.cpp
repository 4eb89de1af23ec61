// SPDX-License-Identifier: GPL-3.0-or-later
// Prints what the stages of the second pass cost (reading, decoding, conversion, encoding, writing), in milliseconds of
// processor time a picture, and how many pictures a second the whole makes on one core and on all, for both formats.
#include "batchprocess.h"
#include "tools/movencoder/conversion.h"
#include "tools/movencoder/moviereader.h"
#include "tools/movencoder/moviewriter.h"
#include "tools/movencoder/pictureconverter.h"
#include "tools/movencoder/pictureencoder.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::movencoder;

namespace
{

constexpr std::size_t mostKept = 60; // pictures in memory

struct Stages {
    double read = 0;
    double decode = 0;
    double convert = 0;
    double encode = 0;
    double write = 0;
};

[[noreturn]] void giveUp(const std::string& reason)
{
    std::fprintf(stderr, "second-pass: %s\n", reason.c_str());
    std::exit(1);
}

// Of all threads of this process.
double processorSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

class Clock
{
public:
    // What has passed since the last question.
    double lap()
    {
        const double last = last_;
        last_ = processorSeconds();
        return last_ - last;
    }

private:
    double last_ = processorSeconds();
};

int openOutput(const std::string& path)
{
    const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) {
        giveUp(path + " cannot be written");
    }
    return fd;
}

void readAll(const std::string& path)
{
    AVFormatContext* container = nullptr;
    if (avformat_open_input(&container, path.c_str(), nullptr, nullptr) < 0) {
        giveUp(path + " cannot be read");
    }
    const PacketPtr packet(av_packet_alloc());
    while (av_read_frame(container, packet.get()) >= 0) {
        av_packet_unref(packet.get());
    }
    avformat_close_input(&container);
}

std::unique_ptr<MovieReader> openReader(const std::string& path)
{
    auto reader = MovieReader::open(path);
    if (!reader) {
        giveUp(reader.reason());
    }
    return *std::move(reader);
}

// Decodes everything and keeps the first pictures; answers how many there were.
int decodeAll(MovieReader& reader, std::vector<FramePtr>& kept)
{
    int pictures = 0;
    for (;;) {
        const auto item = reader.next();
        if (!item) {
            giveUp(item.reason());
        }
        if (*item == MovieReader::Item::End) {
            return pictures;
        }
        if (*item == MovieReader::Item::Picture) {
            DecodedPicture picture = reader.takePicture();
            ++pictures;
            if (kept.size() < mostKept && picture.frame) {
                kept.push_back(std::move(picture.frame));
            }
        }
    }
}

Stages measureStages(const std::string& path, const std::string& output, Format format, const FormatSettings& settings)
{
    Stages stages;
    Clock clock;
    readAll(path);
    const double read = clock.lap();
    const auto reader = openReader(path);
    std::vector<FramePtr> kept;
    const double pictures = decodeAll(*reader, kept);
    stages.read = read / pictures;
    stages.decode = (clock.lap() - read) / pictures;

    PictureFacts facts;
    facts.fit = fitPicture(kept.front()->width, kept.front()->height, {1, 1}, settings);
    facts.timeBase = {1, 60};
    auto encoder = makePictureEncoder(format, settings, facts);
    if (!encoder) {
        giveUp(encoder.reason());
    }
    const int fd = openOutput(output);
    auto writer = MovieWriter::open(fd, *reader, **encoder, facts);
    if (!writer) {
        giveUp(writer.reason());
    }
    PictureConverter converter(facts.fit, (*encoder)->pixelFormat());
    const double count = static_cast<double>(kept.size());
    for (std::size_t i = 0; i <= kept.size(); ++i) {
        // The first picture comes twice: memory and tables are made with it.
        Stages one;
        auto bytes = std::make_shared<std::vector<std::uint8_t>>();
        clock.lap();
        const auto converted = converter.convert(*kept[i == 0 ? 0 : i - 1]);
        one.convert = clock.lap();
        if (!converted || !(*encoder)->encode(**converted, {}, *bytes)) {
            giveUp("a picture cannot be encoded");
        }
        one.encode = clock.lap();
        if (!(*writer)->writePicture({bytes, static_cast<std::int64_t>(i), 1})) {
            giveUp("a picture cannot be written");
        }
        one.write = clock.lap();
        if (i > 0) {
            stages.convert += one.convert / count;
            stages.encode += one.encode / count;
            stages.write += one.write / count;
        }
    }
    close(fd);
    return stages;
}

// Of the whole conversion, on the first `cores` cores.
double picturesPerSecond(const std::string& path, const std::string& output, Format format,
                         const FormatSettings& settings, unsigned cores)
{
    cpu_set_t all;
    cpu_set_t some;
    CPU_ZERO(&some);
    sched_getaffinity(0, sizeof all, &all);
    for (unsigned cpu = 0, taken = 0; cpu < CPU_SETSIZE && taken < cores; ++cpu) {
        if (CPU_ISSET(cpu, &all)) {
            CPU_SET(cpu, &some);
            ++taken;
        }
    }
    sched_setaffinity(0, sizeof some, &some);
    const int fd = openOutput(output);
    const auto start = std::chrono::steady_clock::now();
    const auto done = convertMovie({path, path}, output, fd, format, settings);
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    sched_setaffinity(0, sizeof all, &all);
    close(fd);
    if (!done) {
        giveUp(done.reason());
    }
    return static_cast<double>(done->written) / passed.count();
}

void show(std::FILE* to, const std::string& path, const std::string& output, Format format, int rounds)
{
    FormatSettings settings;
    settings.width = 1280;
    settings.height = 720;
    const Stages stages = measureStages(path, output, format, settings);
    const double sum = stages.read + stages.decode + stages.convert + stages.encode + stages.write;
    const auto part = [&](const char* name, double seconds) {
        std::fprintf(to, "  %-8s %7.2f ms  %3.0f %%\n", name, 1000 * seconds, 100 * seconds / sum);
    };
    std::fprintf(to, "%s\n", formatName(format));
    part("read", stages.read);
    part("decode", stages.decode);
    part("convert", stages.convert);
    part("encode", stages.encode);
    part("write", stages.write);
    for (const unsigned cores : {1U, usableCores()}) {
        double best = 0;
        for (int round = 0; round < rounds; ++round) {
            best = std::max(best, picturesPerSecond(path, output, format, settings, cores));
        }
        std::fprintf(to, "  %u core%s %7.1f pictures a second\n", cores, cores == 1 ? " " : "s", best);
    }
    std::fflush(to);
}

QString makeNoise(const QString& folder)
{
    const QString path = folder + QStringLiteral("/noise.mov");
    const QStringList arguments =
        QStringLiteral("-nostdin -v error -f lavfi -i testsrc2=size=1280x720:rate=60:duration=5 "
                       "-vf noise=alls=12:allf=t -c:v libx264 -preset veryfast -pix_fmt yuv420p")
            .split(u' ');
    return bench::runQuietly(QStringLiteral("ffmpeg"), QStringList(arguments) << path) ? path : QString();
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("What the stages of the second pass cost."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("clip"), QStringLiteral("instead of 5 s of noise at 720p60"));
    const QCommandLineOption rounds(QStringLiteral("rounds"), QStringLiteral("of which the best one counts"),
                                    QStringLiteral("number"), QStringLiteral("3"));
    parser.addOption(rounds);
    parser.process(application);
    const QTemporaryDir folder;
    const QString clip =
        parser.positionalArguments().isEmpty() ? makeNoise(folder.path()) : parser.positionalArguments().first();
    if (clip.isEmpty()) {
        giveUp("ffmpeg cannot make the clip");
    }
    // The conversion tells its progress on standard output.
    std::FILE* to = fdopen(dup(STDOUT_FILENO), "w");
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (to == nullptr || nowhere < 0 || dup2(nowhere, STDOUT_FILENO) < 0) {
        giveUp("there is no output");
    }
    for (const Format format : {Format::AppleIntermediate, Format::ProRes}) {
        show(to, clip.toStdString(), folder.filePath(QStringLiteral("output.mov")).toStdString(), format,
             std::max(1, parser.value(rounds).toInt()));
    }
    return std::fclose(to) == 0 ? 0 : 1;
}
