// Small helpers around file descriptors and error numbers, for the tools.
#pragma once

#include <string>
#include <string_view>

namespace tavrix
{

/// The system's text for an error number.
[[nodiscard]] std::string errorText(int number);

/// Moves a new descriptor out of the range of the standard streams, where a tool that was started with one of them
/// closed would have it taken for that stream. Close-on-exec. A negative descriptor stays as it is, with errno.
[[nodiscard]] int aboveStandardStreams(int fd);

/// Writes everything, through interruptions and partial writes. False, with errno, when that fails.
[[nodiscard]] bool writeAll(int fd, std::string_view bytes);

} // namespace tavrix
