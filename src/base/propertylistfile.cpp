#include "base/propertylistfile.h"

#include "base/atomicfile.h"
#include "base/log.h"
#include "base/posixfile.h"
#include "base/propertylist.h"

#include <fcntl.h>

namespace tavrix
{
namespace
{

constexpr qint64 largestList = qint64{256} << 20;

bool isNumber(const QVariant& value)
{
    const int type = value.typeId();
    return type == QMetaType::LongLong || type == QMetaType::Double || type == QMetaType::Bool;
}

} // namespace

bool createNewPlist(const QString& path, const QVariant& value)
{
    QString reason;
    const std::optional<QByteArray> xml = propertyListToXml(value, &reason);
    if (xml && replaceFileAtomically(path, *xml, &reason)) {
        return true;
    }
    logLine(QStringLiteral("%@"), {reason});
    return false;
}

std::optional<QVariantMap> readPlist(const QString& path)
{
    const QByteArray bytes = systemPath(path);
    const FileDescriptor file = bytes.isEmpty() ? FileDescriptor() : openFile(bytes, O_RDONLY);
    const std::optional<QByteArray> contents = file.isOpen() ? readAllFrom(file, largestList) : std::nullopt;
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
