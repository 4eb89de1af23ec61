// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/currentrow.h"

#include "app/batchlist.h"
#include "app/stepflags.h"
#include "base/store/preferences.h"
#include "base/text/format.h"
#include "base/text/text.h"

namespace tavrix
{

int currentRowIndex(const BatchList& rows)
{
    const QString current = prefRead(pref::encCurrentProcessingFile);
    // A row may be named like the mark of a stop; it must not be taken for the current one.
    if (current.isEmpty() || current == cancelMark) {
        return -1;
    }
    return rows.indexOfSource(current);
}

QString currentValue(const QString& key)
{
    return prefReadChildDico(pref::processEncDico, key);
}

float currentNumber(const QString& key)
{
    return static_cast<float>(floatPrefix(currentValue(key)));
}

} // namespace tavrix
