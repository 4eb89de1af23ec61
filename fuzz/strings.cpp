// SPDX-License-Identifier: GPL-3.0-or-later
// Any text as a string table: each entry stands in the text, and an entry written out reads as itself.
#include "base/dialogue/localisation.h"
#include "input.h"

namespace
{

QString escaped(QString text)
{
    text.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    text.replace(QLatin1Char('"'), QLatin1String("\\\""));
    return text.replace(QLatin1Char('\n'), QLatin1String("\\n"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tavrix;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QMap<QString, QString> table = parseStringsTable(text);
    for (auto entry = table.begin(); entry != table.end(); ++entry) {
        const QString line = QLatin1Char('"') + escaped(entry.key()) + QLatin1String("\" = \"") +
                             escaped(entry.value()) + QLatin1String("\";");
        fuzz::require(parseStringsTable(line).value(entry.key()) == entry.value());
    }
    return 0;
}
