// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/plurals.h"

#include "base/dialogue/localisation.h"

namespace tavrix
{

QString countedText(const char* key, qint64 number, const QString& table)
{
    const bool one = number == 1 || (number == 0 && currentLanguage() == QLatin1String("fr"));
    const QString name = QLatin1String(key);
    return localizedString(one ? name + QLatin1String("_one") : name, table);
}

} // namespace tavrix
