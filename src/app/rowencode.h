// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The life of one row, from its preparation to its judgement.

#include "app/outputguard.h"
#include "app/partfile.h"
#include "app/rowchildren.h"
#include "app/rowclearance.h"
#include "app/session.h"
#include "process/tasklauncher.h"

#include <QStringList>

namespace tavrix
{

class BatchList;

// Prepares a row, has its passes launched by the batch, and judges what they have made. The working record of the row
// is in the preferences store; the row itself is known there by its source.
class RowEncode
{
public:
    // What the batch does after a step.
    enum class Next {
        Wait,    // nothing: the program ends
        Launch,  // the child of pass()
        Finish,  // the finish step
        Refused, // the row is over: it has failed before a child was launched
        Stop,    // the whole batch
        NextRow, // the choice of the next row, where a stop is honoured
    };
    enum class Outcome {
        Succeeded,
        Failed,
        Vanished, // its source was gone before it began
        Stopped,  // there is no current row any more
    };
    struct Pass {
        QStringList arguments; // empty: there is nothing to launch
        float maximum = 0;     // of the progress, in seconds
        int parser = 0;        // selector of the progress parser
        // The terms on which the tool may give its output a name.
        taskLauncher::Environment environment = {};
        int number = 1; // among the row's passes
        int count = 1;
    };

    explicit RowEncode(Session& session);

    // The row's steps, in the order of its life.
    void begin(int row);
    [[nodiscard]] Next prepare();
    // After the pass that makes the part, where only a part is converted.
    [[nodiscard]] Next encodePart();
    [[nodiscard]] Next secondPass();
    [[nodiscard]] Outcome finish();

    // In the place of a life: the row has left the list, and only its finish step comes.
    void vanish();
    // From its beginning until its end was told.
    [[nodiscard]] bool isOpen() const { return state_ == State::Open; }
    void close() { state_ = State::None; }

    // A child's text goes in here; its end and its absence, to the children.
    void childWrote(const QString& text);
    [[nodiscard]] RowChildren& children() { return children_; }
    // Marks the row as failed; an index out of range is ignored.
    void fail(int row, const QString& reason);

    [[nodiscard]] const Pass& pass() const { return pass_; }
    [[nodiscard]] OutputGuard& guard() { return guard_; }
    [[nodiscard]] RowClearance& clearance() { return clearance_; }

private:
    enum class State { None, Open, Vanished };

    [[nodiscard]] Next clearWay(int row, const QString& output);
    [[nodiscard]] Next partPass(int row);
    [[nodiscard]] Next firstPass(int row, const QString& output);
    void launches(Pass pass);
    static void noteIntermediate(const FileIdentity& file);
    [[nodiscard]] QString firstPassFailure(const QString& output) const;
    Next refuse(int row, const QString& reason);
    [[nodiscard]] bool writeClosingBlock(int row, float duration);
    void judge(int row, const QString& output);
    [[nodiscard]] QString failureWords(const QString& output, bool made) const;
    [[nodiscard]] BatchList& rows() const;

    Session& session_;
    OutputGuard guard_;
    RowClearance clearance_;
    PartFile part_;
    Pass pass_;
    State state_ = State::None;
    qint64 startedAt_ = 0; // seconds since 1970
    RowChildren children_;
};

} // namespace tavrix
