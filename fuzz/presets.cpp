// SPDX-License-Identifier: GPL-3.0-or-later
// Any text as a preset file: names and values alternate, and no name is taken for anything but an option.
#include "encode/presets.h"

#include "input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tavrix;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QStringList options = presetOptions(text);
    fuzz::require(options.size() % 2 == 0);
    for (qsizetype i = 0; i < options.size(); i += 2) {
        fuzz::require(options.at(i).startsWith(QLatin1Char('-')));
    }
    return 0;
}
