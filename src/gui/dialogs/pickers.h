// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class QWidget;

// Choosers for files and folders. All are application-modal: while one is open nothing drives the controller.
namespace tavrix
{

// Window that the choosers stand before; null: none. Choosers open again after cancelPickers().
void setPickerWindow(QWidget* window);
// Cancels the open choosers and every later one, so that the program can end.
void cancelPickers();

// One existing file of the given extensions, each also in upper case and capitalised; nothing when cancelled. The first
// argument is not used.
[[nodiscard]] QString selectFile(const QString& unused, const QStringList& types);
// Name patterns that selectFile accepts: for "avi" "*.avi", "*.AVI", "*.Avi".
[[nodiscard]] QStringList selectFilePatterns(const QStringList& types);
// One folder, only when it is writable; nothing when cancelled or not writable. Without a title "Select a Folder". A
// folder that was chosen but cannot be written is told to `refused`.
[[nodiscard]] QString selectFolder(const QString& title,
                                   const std::function<void(const QString& folder)>& refused = {});
// One file or folder; no value when cancelled. Without a title "Select a File or a Folder".
[[nodiscard]] std::optional<QStringList> selectFileFolder(const QString& title);
// Any number of existing files of the document types of the program; empty when cancelled.
[[nodiscard]] QStringList selectSources(const QString& title);
// One readable folder of sources; nothing when cancelled.
[[nodiscard]] QString selectSourceFolder(const QString& title);

// Destination that goes without saying for a source: its folder (ending with "/") when writable, else nothing.
[[nodiscard]] QString dstAutoBt(const QString& path);

} // namespace tavrix
