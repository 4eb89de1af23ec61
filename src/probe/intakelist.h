// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What becomes of a list of dropped files and folders.

#include <QList>
#include <QString>
#include <QStringList>

namespace tavrix
{

struct SkippedSource {
    QString path;
    QString reason; // in the user's language
};

struct IntakeList {
    QStringList accepted;         // regular, readable files of the declared types, in the order of the listing
    QList<SkippedSource> skipped; // what the user would miss among them
};

// What is taken of the files and folders given: links to files become their targets, folders the files below them. A
// file of another type inside a folder is passed over in silence; given by itself it is told. Links to folders inside a
// folder are not entered, and told unless their folder is listed anyway.
[[nodiscard]] IntakeList intakeList(const QStringList& paths);

} // namespace tavrix
