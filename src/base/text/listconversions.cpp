// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/listconversions.h"

#include "base/text/paths.h"
#include "base/text/text.h"
#include "sys/secondpass.h"

#include <algorithm>

namespace tavrix
{

namespace
{

// The master copy's mark, and the length up to which its whole path keeps the name as it is.
const QString& masterSuffix()
{
    static const QString suffix = QString::fromLatin1(secondpass::masterSuffix);
    return suffix;
}
constexpr int shortPathLimit = 28;

QString withExtension(const QString& path, const QString& extension)
{
    return extension.isEmpty() ? path : path + u'.' + extension;
}

} // namespace

QStringList linesToArray(const QString& text)
{
    QStringList lines;
    qsizetype start = 0;
    for (qsizetype position = 0; position <= text.size(); ++position) {
        if (position < text.size() && !isNewline(text[position])) {
            continue;
        }
        if (position > start) {
            lines.append(text.mid(start, position - start));
        }
        start = position + 1;
    }
    return lines;
}

QString array2Str(const QStringList& list)
{
    return list.isEmpty() ? QStringLiteral("") : list.join(u' ');
}

QStringList reverseArray(const QStringList& list)
{
    return {list.crbegin(), list.crend()};
}

QStringList supprimerDoublons(const QStringList& list)
{
    QStringList single = list;
    single.removeDuplicates();
    return reverseArray(single);
}

QStringList triAlphabetique(const QStringList& list)
{
    QStringList sorted = list;
    std::stable_sort(sorted.begin(), sorted.end(), [](const QString& left, const QString& right) {
        return left.compare(right, Qt::CaseInsensitive) < 0;
    });
    return sorted;
}

QStringList& insertObjectsFromArray(QStringList& target, const QStringList& source, int index)
{
    const qsizetype position = qBound(qsizetype{0}, qsizetype{index}, target.size());
    target = target.first(position) + source + target.sliced(position);
    return target;
}

QString reverseStr(const QString& text)
{
    QString reversed = text;
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

QString findAndReplace(const QString& text, const QString& find, const QString& replace)
{
    return containsText(text, find) ? QString(text).replace(find, replace) : text;
}

QString trimStr(const QString& path, int maxLength)
{
    if (path.isEmpty()) {
        return path;
    }
    QString name = stringByDeletingPathExtension(lastPathComponent(path));
    name.remove(u'`');
    name.replace(u':', u'-');
    name.truncate(qMax(0, maxLength));
    const QString folder = stringByDeletingLastPathComponent(path);
    return withExtension(stringByAppendingPathComponent(folder, name), pathExtension(path));
}

QString oldSrcPathStr2DstPathStr(const QString& path)
{
    if (path.isNull()) {
        return path;
    }
    const QString base = stringByDeletingPathExtension(path);
    const QString extension = pathExtension(path);
    const QString candidate = base + masterSuffix();
    if (candidate.size() < shortPathLimit) {
        return withExtension(candidate, extension);
    }
    const int nameLength = shortPathLimit - 1 - static_cast<int>(masterSuffix().size());
    return withExtension(trimStr(base, nameLength) + masterSuffix(), extension);
}

} // namespace tavrix
