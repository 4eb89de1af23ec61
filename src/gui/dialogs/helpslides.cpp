// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/dialogs/helpslides.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"

#include <QFile>
#include <QRegularExpression>

namespace tavrix
{

namespace
{

QString slidePath(int number)
{
    return pathForResource(QStringLiteral("help/slides/slide%1").arg(number), QStringLiteral("svg"));
}

} // namespace

int helpSlideCount()
{
    int count = 0;
    while (!slidePath(count + 1).isEmpty()) {
        ++count;
    }
    return count;
}

QByteArray helpSlide(int number)
{
    QFile file(slidePath(number));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return localisedSlide(QString::fromUtf8(file.readAll()));
}

QByteArray localisedSlide(const QString& drawing)
{
    static const QRegularExpression marked(QStringLiteral("@@([A-Za-z0-9_]+)"));
    QString result;
    qsizetype from = 0;
    for (auto match = marked.globalMatch(drawing); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        result += drawing.mid(from, found.capturedStart() - from);
        result += localizedString(found.captured(1), QStringLiteral("Window")).toHtmlEscaped();
        from = found.capturedEnd();
    }
    return (result + drawing.mid(from)).toUtf8();
}

} // namespace tavrix
