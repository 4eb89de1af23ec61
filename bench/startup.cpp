// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/appdelegate.h"
#include "base/bundle/bundle.h"
#include "gui/window/mainwindow.h"
#include "gui/window/windowprogram.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <ctime>
#include <vector>

// Time from the start of the process to the first paint of the window, and memory at rest, beside an empty window of
// the toolkit.
namespace
{

constexpr int runs = 5;
constexpr int restMilliseconds = 1500;
const char* const beginVariable = "TAVRIX_BENCH_BEGIN";

double now()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double residentMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("VmRSS:")) {
                return line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
            }
        }
    }
    return 0;
}

class FirstPaint : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && painted_ == 0) {
            painted_ = now() - qEnvironmentVariable(beginVariable).toDouble();
            QTimer::singleShot(restMilliseconds, this, [this] {
                std::printf("%.1f %.1f\n", painted_, residentMegabytes());
                QCoreApplication::exit(0);
            });
        }
        return QObject::eventFilter(watched, event);
    }

private:
    double painted_ = 0;
};

int runEmpty()
{
    FirstPaint paint;
    QLabel window(QStringLiteral("window"));
    window.installEventFilter(&paint);
    window.show();
    return QApplication::exec();
}

int runProgram()
{
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setQuitOnLastWindowClosed(false);
    tavrix::setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
    tavrix::WindowProgram program([] {});
    program.face().setRedirectsOutput(false);
    FirstPaint paint;
    program.window().installEventFilter(&paint);
    return program.start() ? QApplication::exec() : 1;
}

struct Result {
    double paint = 0;
    double memory = 0;
};

Result measure(const char* kind)
{
    std::vector<double> paints;
    Result result;
    for (int i = 0; i < runs; ++i) {
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QLatin1String(beginVariable), QString::number(now(), 'f', 3));
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(), {QLatin1String(kind)});
        child.waitForFinished(60000);
        const QList<QByteArray> numbers = child.readAllStandardOutput().trimmed().split(' ');
        if (numbers.size() == 2) {
            paints.push_back(numbers.first().toDouble());
            result.memory = numbers.last().toDouble();
        }
    }
    std::sort(paints.begin(), paints.end());
    result.paint = paints.empty() ? 0 : paints.at(paints.size() / 2);
    std::printf("%-13s first paint %7.1f ms (median of %zu), memory at rest %6.1f MB\n", kind, result.paint,
                paints.size(), result.memory);
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    if (argc == 2) {
        const QApplication application(argc, argv);
        return qstrcmp(argv[1], "empty-window") == 0 ? runEmpty() : runProgram();
    }
    const QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    const QCoreApplication application(argc, argv);
    const Result empty = measure("empty-window");
    const Result program = measure("tavrix");
    if (empty.paint <= 0 || program.paint <= 0) {
        std::fputs("A window has not been painted\n", stderr);
        return 1;
    }
    std::printf("ratio: %.1f times the time, %.1f times the memory of an empty window\n", program.paint / empty.paint,
                program.memory / empty.memory);
    return 0;
}
