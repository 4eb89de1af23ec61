// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/temphome.h"

#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <sys/types.h>

namespace tavrix::test
{

// Runs the real console program on a pseudo terminal, in a home of its own.
class Terminal
{
public:
    explicit Terminal(int columns);
    ~Terminal(); // ends the program if it still runs
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // False when it could not be started.
    [[nodiscard]] bool start(const QStringList& arguments);
    // Reads until the text appears behind what an earlier call has found; false when the program ended or time is up.
    [[nodiscard]] bool readUntil(const QRegularExpression& expected);
    void type(const char* keys) const;
    // Exit status; -1 when it was killed or did not end in time.
    [[nodiscard]] int finish();

    [[nodiscard]] QString shown() const { return QString::fromUtf8(bytes_); }

private:
    [[nodiscard]] bool readMore();

    TempFolder home_;
    int columns_;
    int descriptor_ = -1;
    pid_t pid_ = -1;
    QByteArray bytes_;
    qsizetype found_ = 0;
};

} // namespace tavrix::test
