// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The movie that holds the part of a clip that a row converts.

#include "base/text/cliptime.h"
#include "probe/mediainforecord.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace tavrix
{

struct BatchRow;

// Lies in the program's temporary folder, in a folder of its own, which goes with whatever its tool has left there.
class PartFile
{
public:
    // Makes the folder. The list that is run; its first element is the tool.
    [[nodiscard]] QStringList begin(const QString& source, const ClipPart& part);
    // True once the tool has made the movie.
    [[nodiscard]] bool isMade() const;
    [[nodiscard]] static QString path();
    void remove();

private:
    bool begun_ = false;
};

// "0:10 - 0:42"; "0:10 -" for a part to the clip's end.
[[nodiscard]] QString partText(const ClipPart& part);
// A part as a text that a later run reads; "" for none. Nothing is read from any other text.
[[nodiscard]] QString storedPart(const std::optional<ClipPart>& part);
[[nodiscard]] std::optional<ClipPart> partOfStored(const QString& text);
// The row's record as it is for what is converted of it: of a part, with the part's length. A part that reaches behind
// the clip's end ends with it.
[[nodiscard]] MediaInfoRecord convertedRecord(const BatchRow& row);
// How much of the clip the row converts, 0 to 1; 1 where its length is not known.
[[nodiscard]] double convertedShare(const BatchRow& row);

} // namespace tavrix
