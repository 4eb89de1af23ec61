// SPDX-License-Identifier: GPL-3.0-or-later
#include "pipeline/batchprogram.h"
#include "testpaths.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace tavrix::test
{

namespace
{

// Only a hang lasts longer, also under sanitizers on a busy machine.
constexpr int patienceMilliseconds = 400000;

QByteArray procFile(int pid, const QString& name)
{
    QFile file(QStringLiteral("/proc/") + QString::number(pid) + QLatin1Char('/') + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

QList<QJsonObject> BatchResult::named(const QString& event) const
{
    QList<QJsonObject> found;
    for (const QJsonObject& object : events) {
        if (object.value(QLatin1String("event")).toString() == event) {
            found << object;
        }
    }
    return found;
}

QJsonObject BatchResult::end() const
{
    const QList<QJsonObject> ends = named(QStringLiteral("end"));
    return ends.isEmpty() ? QJsonObject() : ends.last();
}

QStringList BatchResult::outputs() const
{
    QStringList paths;
    for (const QJsonObject& row : named(QStringLiteral("row-finished"))) {
        if (row.value(QLatin1String("success")).toBool()) {
            paths << row.value(QLatin1String("output")).toString();
        }
    }
    return paths;
}

BatchProgram::BatchProgram() = default;

BatchProgram::~BatchProgram()
{
    if (process_ && process_->state() != QProcess::NotRunning) {
        process_->kill();
        process_->waitForFinished(patienceMilliseconds);
    }
}

void BatchProgram::start(const QStringList& arguments)
{
    result_ = BatchResult();
    pending_.clear();
    process_ = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString temporary = home_.makeFolder(QStringLiteral("tmp"));
    QFile::setPermissions(temporary, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    environment.insert(QStringLiteral("HOME"), home_.path());
    environment.insert(QStringLiteral("TMPDIR"), temporary);
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home_.path(QStringLiteral("data")));
    for (auto it = variables_.cbegin(); it != variables_.cend(); ++it) {
        environment.insert(it.key(), it.value());
    }
    process_->setProcessEnvironment(environment);
    process_->setStandardInputFile(QProcess::nullDevice());
    process_->setStandardErrorFile(QProcess::nullDevice());
    process_->start(QStringLiteral(TAVRIX_BUILD_BIN "/tavrix-batch"),
                    QStringList{QStringLiteral("--json")} + arguments);
    process_->waitForStarted(patienceMilliseconds);
}

void BatchProgram::takeLines()
{
    pending_ += process_->readAllStandardOutput();
    qsizetype end = pending_.indexOf('\n');
    while (end >= 0) {
        result_.events << QJsonDocument::fromJson(pending_.left(end)).object();
        pending_.remove(0, end + 1);
        end = pending_.indexOf('\n');
    }
}

bool BatchProgram::readUntil(const std::function<bool(const QJsonObject&)>& condition)
{
    qsizetype seen = result_.events.size();
    QDeadlineTimer deadline(patienceMilliseconds);
    while (true) {
        takeLines();
        for (; seen < result_.events.size(); ++seen) {
            if (condition(result_.events.at(seen))) {
                return true;
            }
        }
        if (process_->state() == QProcess::NotRunning || deadline.hasExpired()) {
            return false;
        }
        process_->waitForReadyRead(static_cast<int>(deadline.remainingTime()));
    }
}

BatchResult BatchProgram::finish()
{
    const bool ended = process_->state() == QProcess::NotRunning || process_->waitForFinished(patienceMilliseconds);
    takeLines();
    result_.crashed = !ended || process_->exitStatus() == QProcess::CrashExit;
    result_.exitCode = result_.crashed ? -1 : process_->exitCode();
    return result_;
}

BatchResult BatchProgram::run(const QStringList& arguments)
{
    start(arguments);
    return finish();
}

QList<int> BatchProgram::processes() const
{
    const QByteArray mark = "HOME=" + home_.path().toUtf8();
    QList<int> pids;
    for (const QString& name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        const int pid = name.toInt();
        if (pid > 0 && processState(pid) != QLatin1String("Z") &&
            procFile(pid, QStringLiteral("environ")).split('\0').contains(mark)) {
            pids << pid;
        }
    }
    return pids;
}

QList<int> BatchProgram::processesRunning(const QString& program) const
{
    QList<int> pids;
    for (const int pid : processes()) {
        const QString target = QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(pid));
        if (target.endsWith(program)) {
            pids << pid;
        }
    }
    return pids;
}

bool BatchProgram::allProcessesGone() const
{
    QDeadlineTimer deadline(10000);
    while (!processes().isEmpty()) {
        if (deadline.hasExpired()) {
            return false;
        }
    }
    return true;
}

QString processState(int pid)
{
    const QByteArray stat = procFile(pid, QStringLiteral("stat"));
    return QString::fromLatin1(stat.mid(stat.lastIndexOf(')') + 2, 1));
}

QStringList filesBelow(const QString& folder)
{
    QStringList files;
    QDirIterator iterator(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (iterator.hasNext()) {
        files << QDir(folder).relativeFilePath(iterator.next());
    }
    files.sort();
    return files;
}

} // namespace tavrix::test
