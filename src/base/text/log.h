// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Diagnostic lines: "<date> <bundle name>[<pid>] <text>" on the error stream, one write a line; a line feed inside a
// value is shown as "\n".

#include "base/text/datetext.h"
#include "base/text/format.h"

#include <functional>

namespace tavrix
{

void logLine(const QString& format, std::initializer_list<FormatArg> arguments = {});
// Only while the debug setting is on.
void logDebug(const QString& format, std::initializer_list<FormatArg> arguments = {});
// Only while the developer-debug setting is on.
void logDev(const QString& format, std::initializer_list<FormatArg> arguments = {});

// Receives every line's text (without date) besides the error stream; an empty function removes it. For tests.
void setLogSink(std::function<void(const QString&)> sink);

// What the higher layers know and every line needs: the settings keep the levels in step, the bundle gives the name
// ("Tavrix" until then).
void setDebugLogged(bool on);
void setDevLogged(bool on);
void setLogName(const QString& name);

} // namespace tavrix
