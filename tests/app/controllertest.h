// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/appdelegate.h"
#include "app/stepflags.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "support_app/fakeface.h"
#include "support_app/faketools.h"

#include <gtest/gtest.h>

#include <memory>

namespace tavrix::test
{

// Sends the error stream, with all log lines, elsewhere while it lives: thousands of steps would fill the report.
class QuietErrorStream
{
public:
    QuietErrorStream();
    ~QuietErrorStream();
    QuietErrorStream(const QuietErrorStream&) = delete;
    QuietErrorStream& operator=(const QuietErrorStream&) = delete;

private:
    int kept_;
};

// Settings, preferences and gate as a fresh start finds them, with folders of the test's own.
void resetProcessState(const QString& temporaryFolder);

// What the face writes down of an alert or a sheet whose title has that key.
[[nodiscard]] QString alertEvent(const char* key);
[[nodiscard]] QString sheetEvent(const char* key);

// A controller with a face and tools that are pretended, ready to take drops; its start checks are skipped.
class ControllerTest : public testing::Test
{
protected:
    ControllerTest();
    ~ControllerTest() override;

    void makeController();
    [[nodiscard]] WindowModel& model() { return controller->model(); }
    [[nodiscard]] BatchList& rows() { return model().encBatchArrayController; }
    [[nodiscard]] QString icons(); // "puce puceSuccess": the rows' icons in order
    [[nodiscard]] QString sourceOf(int row);
    [[nodiscard]] QString outputOf(const QString& source); // where a row of this source and format 3 goes
    [[nodiscard]] QString resumeLog();

    QString clip(const QString& name);     // makes a source of that name
    QStringList makeClips(int count);      // "clip01.mts" ...
    void appendRow(const QString& source); // a row of format 3, without an analysis
    // Runs a batch of rows that need no child to end; how far apart, in bytes, their ends lie on the stack.
    [[nodiscard]] quintptr stackBetweenRows();
    // Drops the sources and lets their analysis run to its end.
    void addRows(const QStringList& sources);
    void pressStart() { controller->iba_batchEncGoBt(); }
    void pressPause(); // toggles pause and play
    void pressStop();
    // Start, then every child to its end.
    void runBatch();

    // No alert open, intake open, no step of either machine left: what every quiet moment looks like.
    void expectIdle();

    const TempFolder folder;
    const QString destination = folder.makeFolder(QStringLiteral("destination"));
    const QString events = destination + QStringLiteral("/Tavrix events");
    FakeFace face;
    FakeTools tools;
    LogCapture log;
    std::unique_ptr<appDelegate> controller;
};

} // namespace tavrix::test
