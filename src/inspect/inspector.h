// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Looks at one file in every way the program has, without changing anything.

#include "inspect/inspection.h"

#include <memory>

namespace tavrix
{

class ToolRun;
struct ToolAnswer;

struct InspectionWish {
    bool thorough = false; // also what takes seconds
};

// One tool, or a copy of this program, runs from the construction on, beside the program's own reading, so that several
// can be prepared while one is finished. Main thread only, and the program has no other thread when one is made; the
// movie that is open serves all.
class Inspector
{
public:
    // The path may be relative to the working folder; a link stands for its target.
    explicit Inspector(const QString& path, const InspectionWish& wish = {});
    ~Inspector();
    Inspector(const Inspector&) = delete;
    Inspector& operator=(const Inspector&) = delete;

    // Waits for the tool, at most a minute. Once only.
    [[nodiscard]] Inspection finish();

private:
    [[nodiscard]] int inspectHere(int output, int errors) const;
    [[nodiscard]] ToolAnswer toolAnswer();
    void readMovie();
    void readToolAnswer();
    void describeAgain();
    void judge();
    void lookThoroughly();

    InspectionWish wish_;
    QString file_;      // absolute
    bool here_ = false; // the run is the program's own
    std::unique_ptr<ToolRun> run_;
    QString transcript_; // about the file alone
    Inspection inspection_;
};

// The arguments of the one run that tells the description, the time stamps and the field order. Element 0 is the tool.
[[nodiscard]] QStringList inspectionArguments(const QString& tool, const QString& file);

// The last line of a failed run that says why, without the file's path; nothing when none does.
[[nodiscard]] QString reasonInTranscript(const QString& transcript, const QString& file);

} // namespace tavrix
