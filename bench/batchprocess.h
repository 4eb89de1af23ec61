// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

// What the benchmarks of the console program share: their options, clips, and a run whose events carry a time.
namespace tavrix::bench
{

struct Options {
    int clips = 0;
    double seconds = 0; // of a clip
    int rounds = 0;
};
// The program's command line over the defaults given; ends the program when it is wrong.
[[nodiscard]] Options optionsFromCommandLine(const QString& description, const Options& defaults);

// Runs a program to its end with its output thrown away; false when it failed.
[[nodiscard]] bool runQuietly(const QString& program, const QStringList& arguments);

// Makes 1280x720 transport streams like those of cameras ("00001.MTS") in the folder: one encode, then copies. Answers
// their paths; fewer when that failed.
[[nodiscard]] QStringList makeClips(const QString& folder, const Options& options);

struct Event {
    QJsonObject object;
    double seconds = 0; // since the program was started
    [[nodiscard]] QString name() const { return object.value(QLatin1String("event")).toString(); }
};

// One run of the console program, which stands beside this one, in a home of its own.
class BatchRun
{
public:
    // Reads events until `isLast` is true of one, then ends the program if it goes on. Empty when it did not come to
    // that event.
    QList<Event> run(const QStringList& arguments, const std::function<bool(const Event&)>& isLast);

private:
    QTemporaryDir home_;
};

// "label 12.34 s"
void printTime(const char* label, double seconds);

} // namespace tavrix::bench
