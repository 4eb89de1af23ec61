// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the children of a row say, and how they end.

#include "app/rowverdict.h"
#include "sys/childend.h"

#include <QString>

#include <optional>

namespace tavrix
{

class RowChildren
{
public:
    // Before a row, and before each of its children (the path of its tool).
    void beginRow();
    void beginPass(const QString& tool);

    // Any piece of a child's text.
    void wrote(const QString& text);
    void ended(const ChildEnd& end) { end_ = end; }
    // The tool could not be started.
    void missing(const QString& tool);
    // One has said nothing for that long and is ended.
    void silent(int seconds);

    [[nodiscard]] const RowVerdict& verdict() const { return verdict_; }
    // Why the row has failed, localised. `made`: whether there is an output, believed or not.
    [[nodiscard]] QString failureReason(bool made) const;

private:
    RowVerdict verdict_;
    QString tool_;                // of the last child
    std::optional<ChildEnd> end_; // of the last child; nothing before its end
    QString silence_;             // that it was ended for its silence; nothing when it was not
    QString transcriptTail_;      // its last text, for the reason of a failure
};

} // namespace tavrix
