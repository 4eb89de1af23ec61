// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/reporter.h"

#include <QJsonObject>

namespace tavrix
{

// One JSON object a line, each with the member "event". The set of events is documented in docs/console.md.
class JsonReporter : public Reporter
{
public:
    explicit JsonReporter(std::FILE* stream);

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

private:
    void write(const char* event, QJsonObject object);

    std::FILE* stream_;
    int row_ = 0;
};

} // namespace tavrix
