// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/appdelegate.h"
#include "base/dialogue/localisation.h"
#include "console/reporter.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "support_app/faketools.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace tavrix::test
{

// The program's texts in English and the process as a fresh start finds it.
class ConsoleTest : public testing::Test
{
protected:
    ConsoleTest();
    ~ConsoleTest() override;

    const TempFolder folder;
};

// A stream whose text can be read.
class TextStream
{
public:
    TextStream() : stream_(::open_memstream(&bytes_, &length_)) {}
    ~TextStream()
    {
        std::fclose(stream_);
        std::free(bytes_);
    }
    TextStream(const TextStream&) = delete;
    TextStream& operator=(const TextStream&) = delete;

    [[nodiscard]] std::FILE* file() const { return stream_; }
    [[nodiscard]] QString text() const
    {
        std::fflush(stream_);
        return QString::fromUtf8(bytes_, static_cast<qsizetype>(length_));
    }
    // Complete lines without their ends.
    [[nodiscard]] QStringList lines() const
    {
        QStringList lines = text().split(u'\n');
        lines.removeLast();
        return lines;
    }

private:
    char* bytes_ = nullptr;
    std::size_t length_ = 0;
    std::FILE* stream_;
};

// Writes down what it is told, one line a call.
class NotingReporter : public Reporter
{
public:
    QStringList notes;
    QString folder; // of the summary

    void queued(int count) override;
    void analysing(const QString& path, int number, int total) override;
    void accepted(const QString& path, const QVariantMap& infos) override;
    void rejected(const QString& path, const QString& reason) override;
    void rowStarted(int number, int total, const QString& source, const std::optional<ClipPart>& part) override;
    void rowProgress(const RowProgress& progress) override;
    void rowFinished(int number, int total, const RowReport& row) override;
    void message(const QString& title, const QString& text, const QString& answer) override;
    void notice(const QString& title, const QString& text) override;
    void plan(const QList<PlannedRow>& rows, int leftOut, const QString& folder, int exitCode) override;
    void summary(const QList<RowReport>& rows, const NotConverted& others, const QString& folder,
                 int exitCode) override;
};

} // namespace tavrix::test
