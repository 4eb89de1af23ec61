// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/temphome.h"

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

// Runs the real console program with the real tools, in a home of its own, and reads the JSON lines it prints.
namespace tavrix::test
{

struct BatchResult {
    int exitCode = -1;
    bool crashed = false;
    QList<QJsonObject> events;

    [[nodiscard]] QList<QJsonObject> named(const QString& event) const;
    [[nodiscard]] QJsonObject end() const; // the last event, empty when it is none
    // Outputs of the rows that succeeded.
    [[nodiscard]] QStringList outputs() const;
};

class BatchProgram
{
public:
    BatchProgram();
    ~BatchProgram();
    BatchProgram(const BatchProgram&) = delete;
    BatchProgram& operator=(const BatchProgram&) = delete;

    // A variable of the next starts.
    void setVariable(const QString& name, const QString& value) { variables_.insert(name, value); }
    void start(const QStringList& arguments);
    // Reads events until one satisfies the condition; false when the program ended before or the time is up.
    bool readUntil(const std::function<bool(const QJsonObject&)>& condition);
    BatchResult finish();
    BatchResult run(const QStringList& arguments);

    [[nodiscard]] qint64 pid() const { return process_->processId(); }
    [[nodiscard]] QString home() const { return home_.path(); }
    // Processes that carry this home in their environment: the program, its tools, their children.
    [[nodiscard]] QList<int> processes() const;
    // Those whose command line names the program given (its last path component).
    [[nodiscard]] QList<int> processesRunning(const QString& program) const;
    // True when none of them is left within some seconds.
    [[nodiscard]] bool allProcessesGone() const;

private:
    void takeLines();

    TempFolder home_;
    QMap<QString, QString> variables_;
    std::unique_ptr<QProcess> process_;
    BatchResult result_;
    QByteArray pending_;
};

// The single letter that /proc shows for a process ("T" stopped); "" when it is gone.
[[nodiscard]] QString processState(int pid);
// Every file below the folder, hidden ones included, as paths relative to it.
[[nodiscard]] QStringList filesBelow(const QString& folder);

} // namespace tavrix::test
