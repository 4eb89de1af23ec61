// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/text/log.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace tavrix::test
{

// A fresh folder of its own below the test run's temporary folder, removed with all it holds (links are never
// followed).
class TempFolder
{
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    [[nodiscard]] QString path() const { return path_; } // without a trailing "/"
    [[nodiscard]] QString path(const QString& name) const;
    // Makes the file, and the folders in between; answers its full path.
    QString makeFile(const QString& name, const QByteArray& bytes = {}) const;
    QString makeFolder(const QString& name) const;

private:
    QString path_;
};

// Nothing else than these bytes is in the file afterwards; false when it cannot be written.
bool writeBytes(const QString& path, const QByteArray& bytes);
[[nodiscard]] std::optional<QByteArray> readBytes(const QString& path);
// What the system says of a missing file, in the language of the environment.
[[nodiscard]] QString missingFileText();
// True for a dangling link too.
[[nodiscard]] bool itemExists(const QString& path);

// Gives an environment variable another value (null removes it) while it lives.
class EnvironmentChange
{
public:
    EnvironmentChange(const char* name, const char* value);
    ~EnvironmentChange();
    EnvironmentChange(const EnvironmentChange&) = delete;
    EnvironmentChange& operator=(const EnvironmentChange&) = delete;

private:
    const char* name_;
    std::optional<QByteArray> previous_;
};

// Collects the log lines written while it lives.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    [[nodiscard]] const QStringList& lines() const { return lines_; }
    [[nodiscard]] bool contains(const QString& line) const { return lines_.contains(line); }

private:
    QStringList lines_;
};

} // namespace tavrix::test
