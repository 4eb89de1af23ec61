// SPDX-License-Identifier: GPL-3.0-or-later
// What one run of an analysis leaves for the next one.
#pragma once

#include "sys/descriptor.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrix::front
{

// A folder that is nobody else's, with small files of named values in it. A file that cannot be written or read, is
// damaged or is not this user's alone is no file: what is kept saves time only.
class AnalysisKeep
{
public:
    // Nothing where the environment names none, and for a folder that others may enter.
    [[nodiscard]] static std::optional<AnalysisKeep> fromEnvironment();
    [[nodiscard]] static std::optional<AnalysisKeep> in(std::string folder);

    // `key` says what the values are good for; they are found again under the same key only. The last ones replace
    // those before.
    void store(const std::string& name, const std::string& key, const std::vector<std::string>& values) const;
    [[nodiscard]] std::optional<std::vector<std::string>> read(const std::string& name, const std::string& key) const;
    void remove(const std::string& name) const;

    // Says that values are in the making, as long as the result is open and this process lives.
    [[nodiscard]] Descriptor announce(const std::string& name) const;
    // Returns when none are in the making, and after some seconds at the latest.
    void await(const std::string& name) const;

private:
    explicit AnalysisKeep(std::string folder) : folder_(std::move(folder)) {}
    [[nodiscard]] std::string path(const std::string& name) const;

    std::string folder_; // ends with a slash
};

// What tells a file, links followed, from any other one and from itself after a change: "device:inode:size:time"; ""
// for nothing.
[[nodiscard]] std::string contentKey(const std::string& path);

} // namespace tavrix::front
