// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/store/propertylistfile.h"

#include "base/bundle/propertylist.h"
#include "base/files/atomicfile.h"
#include "base/files/posixfile.h"
#include "base/text/log.h"

namespace tavrix
{
namespace
{

constexpr std::uint64_t largestList = std::uint64_t{256} << 20; // bytes

bool isNumber(const QVariant& value)
{
    const int type = value.typeId();
    return type == QMetaType::LongLong || type == QMetaType::Double || type == QMetaType::Bool;
}

} // namespace

bool createNewPlist(const QString& path, const QVariant& value)
{
    const Result<QByteArray, QString> xml = propertyListToXml(value);
    const Result<void, QString> written = xml ? replaceFileAtomically(path, *xml) : Failure{xml.reason()};
    if (!written) {
        logLine(QStringLiteral("%@"), {written.reason()});
    }
    return written.hasValue();
}

std::optional<QVariantMap> readPlist(const QString& path)
{
    const Result<QByteArray> contents = readFile<QByteArray>(systemPath(path), largestList);
    const std::optional<QVariant> list = contents ? propertyListFromBytes(*contents) : std::nullopt;
    if (!list || list->typeId() != QMetaType::QVariantMap) {
        return std::nullopt;
    }
    QVariantMap dictionary = list->toMap();
    const auto birthdate = dictionary.find(QStringLiteral("Birthdate"));
    if (birthdate != dictionary.end() && isNumber(*birthdate)) {
        *birthdate = 1564.0;
    }
    return dictionary;
}

} // namespace tavrix
