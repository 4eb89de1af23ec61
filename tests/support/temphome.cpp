// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/temphome.h"

#include <QDir>
#include <QFile>
#include <cerrno>
#include <cstring>

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrix::test
{

TempFolder::TempFolder()
{
    QByteArray pattern = QFile::encodeName(QDir::tempPath() + QStringLiteral("/folder-XXXXXX"));
    if (mkdtemp(pattern.data())) {
        path_ = QFile::decodeName(pattern);
    } else {
        ADD_FAILURE() << "no temporary folder at " << pattern.constData();
    }
}

TempFolder::~TempFolder()
{
    if (!path_.isEmpty()) {
        std::error_code error;
        std::filesystem::remove_all(QFile::encodeName(path_).constData(), error);
        EXPECT_FALSE(error) << error.message();
    }
}

QString TempFolder::path(const QString& name) const
{
    return path_ + u'/' + name;
}

QString TempFolder::makeFile(const QString& name, const QByteArray& bytes) const
{
    QString file = path(name);
    EXPECT_TRUE(QDir().mkpath(file.left(file.lastIndexOf(u'/'))));
    EXPECT_TRUE(writeBytes(file, bytes)) << file.toStdString();
    return file;
}

QString TempFolder::makeFolder(const QString& name) const
{
    QString folder = path(name);
    EXPECT_TRUE(QDir().mkpath(folder)) << folder.toStdString();
    return folder;
}

bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size() && file.flush();
}

std::optional<QByteArray> readBytes(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return file.readAll();
}

QString missingFileText()
{
    return QString::fromLocal8Bit(std::strerror(ENOENT));
}

bool itemExists(const QString& path)
{
    struct stat status = {};
    return lstat(QFile::encodeName(path).constData(), &status) == 0;
}

EnvironmentChange::EnvironmentChange(const char* name, const char* value) : name_(name)
{
    if (qEnvironmentVariableIsSet(name)) {
        previous_ = qgetenv(name);
    }
    value ? qputenv(name, value) : qunsetenv(name);
}

EnvironmentChange::~EnvironmentChange()
{
    previous_ ? qputenv(name_, *previous_) : qunsetenv(name_);
}

LogCapture::LogCapture()
{
    setLogSink([this](const QString& line) { lines_.append(line); });
}

LogCapture::~LogCapture()
{
    setLogSink({});
}

} // namespace tavrix::test
