// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/childactivity.h"

#include "sys/foldernames.h"
#include "sys/transfer.h"

#include <algorithm>
#include <charconv>
#include <fcntl.h>
#include <string>
#include <string_view>

namespace tavrix
{

namespace
{

constexpr std::size_t longestProcFile = 4096;

std::string procFile(const std::string& process, const char* name)
{
    const std::string path = "/proc/" + process + '/' + name;
    const auto text = readFile<std::string>(path.c_str(), longestProcFile);
    return text ? *text : std::string();
}

std::string_view nextWord(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \n"), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(" \n"));
    text.remove_prefix(word.size());
    return word;
}

quint64 number(std::string_view word)
{
    quint64 value = 0;
    std::from_chars(word.data(), word.data() + word.size(), value);
    return value;
}

struct ProcessTimes {
    pid_t group = 0;
    quint64 ticks = 0;
};

// The fields behind the name, which may hold blanks and parentheses itself.
ProcessTimes timesOf(const std::string& stat)
{
    constexpr int groupField = 3;
    constexpr int userField = 12;
    constexpr int systemField = 13;
    const std::size_t end = stat.rfind(')');
    if (end == std::string::npos) {
        return {};
    }
    std::string_view fields = std::string_view(stat).substr(end + 1);
    ProcessTimes times;
    for (int field = 1; field <= systemField; ++field) {
        const quint64 value = number(nextWord(fields));
        if (field == groupField) {
            times.group = static_cast<pid_t>(value);
        } else if (field == userField || field == systemField) {
            times.ticks += value;
        }
    }
    return times;
}

quint64 bytesOf(const std::string& io)
{
    quint64 bytes = 0;
    std::string_view text = io;
    for (std::string_view key = nextWord(text); !key.empty(); key = nextWord(text)) {
        const quint64 value = number(nextWord(text));
        if (key == "rchar:" || key == "wchar:") {
            bytes += value;
        }
    }
    return bytes;
}

} // namespace

ChildActivity activityOfGroups(const std::vector<pid_t>& groups)
{
    ChildActivity activity;
    const Descriptor folder = openFile("/proc", O_RDONLY | O_DIRECTORY);
    for (const std::string& name : namesIn(folder).value_or(std::vector<std::string>())) {
        if (name.front() < '1' || name.front() > '9') {
            continue;
        }
        const ProcessTimes times = timesOf(procFile(name, "stat"));
        if (times.group > 0 && std::ranges::find(groups, times.group) != groups.end()) {
            activity.ticks += times.ticks;
            activity.bytes += bytesOf(procFile(name, "io"));
        }
    }
    return activity;
}

} // namespace tavrix
