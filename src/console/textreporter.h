// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/options.h"
#include "console/progressline.h"
#include "console/reporter.h"

#include <QElapsedTimer>
#include <QHash>

namespace tavrix
{

// Plain lines; on a terminal also a progress bar that is redrawn in place.
class TextReporter : public Reporter
{
public:
    // The stream is not owned. `terminal`: progress bars may be drawn.
    TextReporter(std::FILE* stream, bool terminal, Verbosity verbosity = Verbosity::Normal);

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
    void line(const QString& text);
    // A line that only a person who watches needs.
    void chat(const QString& text);
    [[nodiscard]] bool isQuiet() const { return verbosity_ == Verbosity::Quiet; }
    void listRow(const RowReport& row);
    void draw(const QString& text);
    void clearDrawn();
    [[nodiscard]] int terminalWidth() const;
    [[nodiscard]] QString place() const;
    // With its folder where another clip has the same name.
    [[nodiscard]] QString failedName(const QString& path) const;

    std::FILE* stream_;
    bool terminal_; // and somebody watches
    Verbosity verbosity_;
    bool drawn_ = false;
    QHash<QString, int> names_; // how many rows bear each
    int analysisNumber_ = 0;
    int analysisTotal_ = 0;
    ProgressState state_;
    QElapsedTimer rowClock_;
    QElapsedTimer drawClock_;
};

} // namespace tavrix
