// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What stands in the preferences: a row for each key that the program keeps there. A key without a row is deleted at
// the next start.

#include <QString>
#include <QVariant>

#include <span>

namespace tavrix
{

enum class StoredKind {
    Setting, // the user's; kept
    Queue,   // what was being read or waited in the list: kept at a start, which then decides about it
    Working, // of the run, the clip or the row at hand: deleted at a start
};

enum class StoredType {
    Number,
    Text,
    Path,       // of a file or folder; "" when there is none
    Seconds,    // above 0
    Dictionary, // of texts, or lists of them, by key
};

struct StoredRow {
    QString key;
    StoredKind kind;
    StoredType type;
    QVariant byDefault; // what a missing or impossible value stands for; invalid: nothing
};

[[nodiscard]] std::span<const StoredRow> storedRows();
// Rows that are not working state, and what file dialogs keep for themselves ("NSNav...").
[[nodiscard]] bool isKeptAtStart(const QString& key);
// The number of a row of the type Number or Seconds, or its default; 0 where it has none. A key without a row has none.
[[nodiscard]] int storedNumber(const QString& key);

} // namespace tavrix
