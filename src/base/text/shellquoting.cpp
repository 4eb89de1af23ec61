// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/shellquoting.h"

namespace tavrix
{

QString shellDoubleQuoted(const QString& value)
{
    QString escaped = value;
    // The backslash first: the others bring their own.
    for (const QChar special : {u'\\', u'"', u'$', u'`'}) {
        escaped.replace(special, QStringLiteral("\\") + special);
    }
    return escaped;
}

} // namespace tavrix
