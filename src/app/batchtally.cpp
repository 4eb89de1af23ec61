// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batchtally.h"

#include "base/dialogue/plurals.h"
#include "base/text/format.h"
#include "probe/batchtexts.h"

#include <QStringList>

#include <initializer_list>
#include <utility>

namespace tavrix
{

BatchTally tallyOf(const BatchList& rows)
{
    BatchTally tally;
    for (int i = 0; i < rows.count(); ++i) {
        tally.count(rows.row(i));
    }
    return tally;
}

QString tallyText(const BatchTally& tally)
{
    const int all = tally.converted + tally.incomplete + tally.failed + tally.notBegun;
    QStringList parts = {
        formatText(countedText("Tally_converted", all, QStringLiteral("Batch")), {tally.converted, all})};
    const std::initializer_list<std::pair<const char*, int>> others = {{"Tally_incomplete", tally.incomplete},
                                                                       {"Tally_failed", tally.failed - tally.kept},
                                                                       {"Tally_kept", tally.kept},
                                                                       {"Tally_notBegun", tally.notBegun}};
    for (const auto& [key, number] : others) {
        if (number > 0) {
            parts << formatText(batchText(key), {number});
        }
    }
    return parts.join(QStringLiteral(", "));
}

} // namespace tavrix
