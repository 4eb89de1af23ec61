// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/mailaddress.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "base/text/format.h"
#include "base/text/text.h"

#include <QStringList>

namespace tavrix
{

namespace
{

QString percentEscaped(const QString& address)
{
    static const QByteArray kept = "!$&'()*+,-./:;=?@_~";
    QByteArray escaped;
    for (const char byte : address.toUtf8()) {
        const bool letterOrDigit =
            (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
        if (letterOrDigit || kept.contains(byte)) {
            escaped.append(byte);
        } else {
            escaped.append('%').append(QByteArray(1, byte).toHex().toUpper());
        }
    }
    return QString::fromLatin1(escaped);
}

} // namespace

QString mailAddress(const QString& mailbox, const QString& versionField, int revision, const QString& body)
{
    QStringList words = versionField.split(QLatin1Char(' '));
    for (QString& word : words) {
        word = capitalized(word);
    }
    // A joined list of nothing is nothing, which a format shows as a word.
    const QString version = versionField.isEmpty() ? QStringLiteral("") : words.join(QLatin1Char(' '));
    const QString address = formatText(QStringLiteral("mailto:%@@%@?subject=%@ - v%.02f (%@)&body=%@-r%d\n\n%@"),
                                       {mailbox, textOf(infoValue(QStringLiteral("TVXMailDomain"))), bundleName(),
                                        floatPrefix(bundleVersion()), localizedString(QStringLiteral("D_Langue")),
                                        version, revision, body});
    return percentEscaped(address);
}

} // namespace tavrix
