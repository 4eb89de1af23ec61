// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The part of a description that tells of pictures and sound.

#include "inspect/describe.h"

namespace tavrix
{

// Collects lines; keys are those of the table "Inspect".
class LineList
{
public:
    // The lines that follow belong to it.
    void heading(const QString& text) { lines_ << DescribedLine{depth_++, text, QString()}; }
    void endHeading() { --depth_; }
    void add(const char* key, const QString& value);
    void addWith(const QString& label, const QString& value) { lines_ << DescribedLine{depth_, label, value}; }
    // Adds no line for nothing and "".
    void addKnown(const char* key, const QString& value);
    [[nodiscard]] QList<DescribedLine> take() { return std::move(lines_); }

private:
    QList<DescribedLine> lines_;
    int depth_ = 0;
};

// A heading for each stream, pictures first.
void addStreams(const Inspection& inspection, LineList& lines);

} // namespace tavrix
