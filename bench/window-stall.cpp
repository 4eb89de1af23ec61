// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/appdelegate.h"
#include "base/bundle/bundle.h"
#include "gui/window/mainwindow.h"
#include "gui/window/windowprogram.h"
#include "platform/desktop.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <vector>

// How long the window's event loop stands still: idle, while 200 clips are analysed, and while two are encoded.
namespace
{

constexpr int clipCount = 200;
constexpr int encodeCount = 2;
constexpr double limitMilliseconds = 100;

class QuietDesktop : public tavrix::DesktopServices
{
public:
    bool openUrl(const QUrl&) override { return true; }
    bool openFileWith(const QString&, const QString&) override { return true; }
    bool reveal(const QString&) override { return true; }
    void noteFileSystemChanged(const QString&) override {}
};

// Notes the time between ticks of a timer that asks for one every millisecond.
class TickWatch
{
public:
    TickWatch()
    {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setInterval(1);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
            gaps_.push_back(static_cast<double>(clock_.nsecsElapsed()) / 1e6);
            clock_.start();
        });
    }
    void start()
    {
        gaps_.clear();
        clock_.start();
        timer_.start();
    }
    double stop(const char* name)
    {
        timer_.stop();
        std::sort(gaps_.begin(), gaps_.end());
        const double largest = gaps_.empty() ? 0 : gaps_.back();
        const double usual = gaps_.empty() ? 0 : gaps_.at(gaps_.size() * 99 / 100);
        std::printf("%-10s largest gap %7.1f ms, 99 of 100 below %6.1f ms (%zu ticks)\n", name, largest, usual,
                    gaps_.size());
        return largest;
    }

private:
    QTimer timer_;
    QElapsedTimer clock_;
    std::vector<double> gaps_;
};

bool waitUntil(const std::function<bool()>& condition, int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    // An idle loop must wake up for the deadline.
    QTimer tick;
    tick.start(50);
    while (!condition() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return condition();
}

bool makeClips(const QString& folder)
{
    const QString first = folder + QStringLiteral("/00000.MTS");
    const QStringList arguments{QStringLiteral("-nostdin"),
                                QStringLiteral("-v"),
                                QStringLiteral("error"),
                                QStringLiteral("-f"),
                                QStringLiteral("lavfi"),
                                QStringLiteral("-i"),
                                QStringLiteral("testsrc2=size=1280x720:rate=25:duration=4"),
                                QStringLiteral("-c:v"),
                                QStringLiteral("libx264"),
                                QStringLiteral("-preset"),
                                QStringLiteral("ultrafast"),
                                QStringLiteral("-pix_fmt"),
                                QStringLiteral("yuv420p"),
                                first};
    if (QProcess::execute(QStringLiteral("ffmpeg"), arguments) != 0) {
        return false;
    }
    for (int i = 1; i < clipCount; ++i) {
        if (!QFile::copy(first, folder + QStringLiteral("/%1.MTS").arg(i, 5, 10, QLatin1Char('0')))) {
            return false;
        }
    }
    return true;
}

bool measure(const QString& clips, const QString& destination)
{
    tavrix::WindowProgram program([] {});
    program.face().setRedirectsOutput(false);
    TickWatch watch;
    if (!program.start()) {
        return false;
    }
    tavrix::WindowModel& model = program.controller().model();
    waitUntil([] { return false; }, 500);
    watch.start();
    waitUntil([] { return false; }, 2000);
    const double idle = watch.stop("idle");

    watch.start();
    program.controller().dragNDropPerformDrag(nullptr, {clips});
    const bool analysed = waitUntil([&] { return !program.controller().isAnalysing(); }, 600000);
    const double analysing = watch.stop("analysing");
    std::printf("           %d rows\n", model.encBatchArrayController.count());

    int finished = 0;
    QObject::connect(&program.controller(), &tavrix::appDelegate::rowFinished, &program, [&finished] { ++finished; });
    model.mainEncDstPathStr.setStringValue(destination);
    for (int i = 0; i < encodeCount; ++i) {
        model.encBatchArrayController.setOut(i, 1);
    }
    watch.start();
    program.controller().iba_batchEncGoBt();
    const bool encoded = waitUntil([&finished] { return finished >= encodeCount; }, 300000);
    const double encoding = watch.stop("encoding");
    std::printf("largest gap: %.1f ms, limit %.0f ms; %.1f times the idle one\n", std::max(analysing, encoding),
                limitMilliseconds, std::max(analysing, encoding) / std::max(idle, 0.001));
    program.controller().quitWithoutQuestion();
    return analysed && encoded && std::max(analysing, encoding) < limitMilliseconds;
}

} // namespace

int main(int argc, char** argv)
{
    const QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_DATA_HOME", home.filePath(QStringLiteral("data")).toUtf8());
    if (!qEnvironmentVariableIsSet("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setQuitOnLastWindowClosed(false);
    tavrix::setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
    QuietDesktop desktop;
    tavrix::setDesktopServices(&desktop);
    const QString clips = home.filePath(QStringLiteral("card/clips"));
    const QString destination = home.filePath(QStringLiteral("converted"));
    if (!QDir().mkpath(clips) || !QDir().mkpath(destination) || !makeClips(clips)) {
        std::fputs("The clips cannot be made: is ffmpeg installed?\n", stderr);
        return 1;
    }
    return measure(clips, destination) ? 0 : 1;
}
