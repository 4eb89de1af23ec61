// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A file that appears under its final name only when it is complete.

#include "sys/descriptor.h"
#include "sys/fileidentity.h"
#include "sys/result.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavrix
{

// An output file in the making. Where the file system allows it the file has no name at all until `commit`
// (O_TMPFILE), so that even a kill leaves nothing behind; elsewhere it has a hidden name in the same folder, with the
// extension of the final one, which is removed on failure, by a guard after a kill, and where even that could not be,
// by the next output into that folder.
// What stands under the final name stays untouched until `commit`; a symbolic link there is replaced, not followed.
class SafeOutput
{
public:
    enum class Style {
        Anonymous, // without a name where possible
        Hidden,    // always with a hidden name: for a writer that looks at the extension
        Brief, // like Anonymous, for what is written at once: a guard over a hidden name would cost more than it saves
    };
    enum class Durability {
        Synced,   // on the disk before it is published
        Unsynced, // for files that a crash of the machine may take
    };

    enum class Existing {
        Replaced, // what stands under the final name by then goes
        Kept,     // it stays, and publishing fails
    };

    // Starts an output for `finalPath`, in its folder; the mode is narrowed by the user's mask.
    [[nodiscard]] static Result<SafeOutput> open(const std::string& finalPath, Style style = Style::Anonymous,
                                                 mode_t mode = 0666);

    SafeOutput(SafeOutput&& other) noexcept = default;
    SafeOutput& operator=(SafeOutput&& other) noexcept;
    SafeOutput(const SafeOutput&) = delete;
    SafeOutput& operator=(const SafeOutput&) = delete;
    // Discards an output that was not committed.
    ~SafeOutput();

    // The name to hand to the writer: "/proc/self/fd/N" or the hidden file. It is good in this process, and in a child
    // that inherits `fd` under the same number.
    [[nodiscard]] const std::string& path() const { return path_; }
    // Open for reading and writing, close-on-exec.
    [[nodiscard]] int fd() const { return file_.get(); }
    [[nodiscard]] const std::string& finalPath() const { return finalPath_; }
    // Bytes written so far; -1 when they cannot be asked.
    [[nodiscard]] std::int64_t size() const;

    // What may be replaced is this file alone: if another one stands under the final name by then, publishing fails.
    void replaceOnly(const FileIdentity& file) { replaceable_ = file; }

    // Publishes the file under its final name. The output is discarded when that fails.
    [[nodiscard]] Result<void> commit(Durability durability = Durability::Synced,
                                      Existing existing = Existing::Replaced);
    // Drops the output; harmless when it is already published or dropped.
    void discard();

private:
    SafeOutput() = default;
    [[nodiscard]] bool openAnonymous(mode_t mode);
    [[nodiscard]] bool openHidden(Style style, mode_t mode);
    [[nodiscard]] bool publish(Existing existing);
    [[nodiscard]] bool giveHiddenName();
    [[nodiscard]] bool renameToFinal(Existing existing);
    [[nodiscard]] bool renameIntoGap();

    std::string finalPath_;
    std::string folderPath_;
    std::string name_;
    std::string hiddenName_; // empty while the file has no name
    std::string path_;
    std::optional<FileIdentity> replaceable_;
    Descriptor folder_;
    Descriptor file_;
    Descriptor guard_; // closed after the hidden name has gone
};

} // namespace tavrix
