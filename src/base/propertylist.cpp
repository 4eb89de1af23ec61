#include "base/propertylist.h"

#include "base/text.h"

#include <QDateTime>
#include <QTimeZone>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <plist/plist.h>

namespace tavrix
{
namespace
{

using Text = std::unique_ptr<char, decltype(&std::free)>;
using Node = std::unique_ptr<void, decltype(&plist_free)>;

// Dates are counted from the beginning of 2001.
constexpr qint64 epoch2001 = 978307200;

std::optional<QVariant> valueOf(plist_t node);

std::optional<QVariant> listOf(plist_t node)
{
    QVariantList list;
    const uint32_t count = plist_array_get_size(node);
    plist_array_iter raw = nullptr;
    plist_array_new_iter(node, &raw);
    const std::unique_ptr<void, decltype(&std::free)> iterator(raw, &std::free);
    for (uint32_t index = 0; index < count; ++index) {
        plist_t item = nullptr;
        plist_array_next_item(node, raw, &item);
        const std::optional<QVariant> value = valueOf(item);
        if (!value) {
            return std::nullopt;
        }
        list.append(*value);
    }
    return list;
}

std::optional<QVariant> dictionaryOf(plist_t node)
{
    QVariantMap map;
    plist_dict_iter raw = nullptr;
    plist_dict_new_iter(node, &raw);
    const std::unique_ptr<void, decltype(&std::free)> iterator(raw, &std::free);
    for (;;) {
        char* keyBytes = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, raw, &keyBytes, &item);
        const Text key(keyBytes, &std::free);
        if (!key && !item) {
            return map;
        }
        const QString name = key ? decodedUtf8(QByteArray(key.get())) : QString();
        const std::optional<QVariant> value = valueOf(item);
        if (name.isNull() || !value) {
            return std::nullopt;
        }
        map.insert(name, *value);
    }
}

std::optional<QVariant> textValue(plist_t node)
{
    char* bytes = nullptr;
    plist_get_string_val(node, &bytes);
    const Text owner(bytes, &std::free);
    const QString text = decodedUtf8(owner ? QByteArray(owner.get()) : QByteArray(""));
    return text.isNull() ? std::nullopt : std::optional<QVariant>(text);
}

std::optional<QVariant> dataValue(plist_t node)
{
    uint64_t length = 0;
    const char* bytes = plist_get_data_ptr(node, &length);
    return QVariant(bytes ? QByteArray(bytes, static_cast<qsizetype>(length)) : QByteArray(""));
}

std::optional<QVariant> dateValue(plist_t node)
{
    int32_t seconds = 0;
    int32_t microseconds = 0;
    plist_get_date_val(node, &seconds, &microseconds);
    return QVariant(QDateTime::fromSecsSinceEpoch(epoch2001 + seconds, Qt::UTC));
}

std::optional<QVariant> valueOf(plist_t node)
{
    uint8_t flag = 0;
    uint64_t number = 0;
    double real = 0.0;
    switch (node ? plist_get_node_type(node) : PLIST_NONE) {
    case PLIST_BOOLEAN:
        plist_get_bool_val(node, &flag);
        return QVariant(flag != 0);
    case PLIST_UINT:
        plist_get_uint_val(node, &number);
        return QVariant(static_cast<qint64>(number));
    case PLIST_REAL:
        plist_get_real_val(node, &real);
        return QVariant(real);
    case PLIST_STRING:
        return textValue(node);
    case PLIST_ARRAY:
        return listOf(node);
    case PLIST_DICT:
        return dictionaryOf(node);
    case PLIST_DATE:
        return dateValue(node);
    case PLIST_DATA:
        return dataValue(node);
    case PLIST_UID:
        plist_get_uid_val(node, &number);
        return QVariant(static_cast<qint64>(number));
    default:
        return std::nullopt;
    }
}

bool isNothing(const QVariant& value)
{
    return !value.isValid() || value.typeId() == QMetaType::Nullptr ||
           (value.typeId() == QMetaType::QString && value.toString().isNull());
}

// The double whose text is the short text of the float: 1.77F must not come back as 1.7699999809265137.
double widened(float number)
{
    std::array<char, 32> shortest{};
    const auto written = std::to_chars(shortest.data(), shortest.data() + shortest.size(), number);
    double value = number;
    std::from_chars(shortest.data(), written.ptr, value);
    return value;
}

Node nodeOf(const QVariant& value, QString* error);

Node failed(QString* error, const QString& reason)
{
    *error = reason;
    return {nullptr, &plist_free};
}

Node textNode(const QString& text, QString* error)
{
    if (text.isNull() || text.contains(QChar(0))) {
        return failed(error, QStringLiteral("text without a property-list form"));
    }
    return {plist_new_string(text.toUtf8().constData()), &plist_free};
}

Node listNode(const QVariantList& list, QString* error)
{
    Node array(plist_new_array(), &plist_free);
    for (const QVariant& value : list) {
        Node item = nodeOf(value, error);
        if (!item) {
            return item;
        }
        plist_array_append_item(array.get(), item.release());
    }
    return array;
}

// An entry of nothing is left out: that is what a missing key means.
Node dictionaryNode(const QVariantMap& map, QString* error)
{
    Node dictionary(plist_new_dict(), &plist_free);
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        if (isNothing(entry.value())) {
            continue;
        }
        if (entry.key().contains(QChar(0))) {
            return failed(error, QStringLiteral("key without a property-list form"));
        }
        Node item = nodeOf(entry.value(), error);
        if (!item) {
            return item;
        }
        plist_dict_set_item(dictionary.get(), entry.key().toUtf8().constData(), item.release());
    }
    return dictionary;
}

Node dateNode(const QDateTime& date, QString* error)
{
    const qint64 seconds = date.toSecsSinceEpoch() - epoch2001;
    if (!date.isValid() || seconds < std::numeric_limits<int32_t>::min() ||
        seconds > std::numeric_limits<int32_t>::max()) {
        return failed(error, QStringLiteral("date without a property-list form"));
    }
    return {plist_new_date(static_cast<int32_t>(seconds), 0), &plist_free};
}

Node realNode(double number, QString* error)
{
    if (!std::isfinite(number)) {
        return failed(error, QStringLiteral("number without a property-list form"));
    }
    return {plist_new_real(number), &plist_free};
}

Node nodeOf(const QVariant& value, QString* error)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return {plist_new_bool(value.toBool() ? 1 : 0), &plist_free};
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return {plist_new_uint(static_cast<uint64_t>(value.toLongLong())), &plist_free};
    case QMetaType::Float:
        return realNode(widened(value.toFloat()), error);
    case QMetaType::Double:
        return realNode(value.toDouble(), error);
    case QMetaType::QString:
        return textNode(value.toString(), error);
    case QMetaType::QStringList:
    case QMetaType::QVariantList:
        return listNode(value.toList(), error);
    case QMetaType::QVariantMap:
        return dictionaryNode(*static_cast<const QVariantMap*>(value.constData()), error);
    case QMetaType::QDateTime:
        return dateNode(value.toDateTime(), error);
    case QMetaType::QByteArray: {
        const QByteArray data = value.toByteArray();
        return {plist_new_data(data.constData(), static_cast<uint64_t>(data.size())), &plist_free};
    }
    default:
        return failed(error, QStringLiteral("no property-list form for the type ") +
                                 QString::fromLatin1(value.isValid() ? value.typeName() : "nothing"));
    }
}

} // namespace

std::optional<QVariant> propertyListFromBytes(const QByteArray& bytes)
{
    if (bytes.isEmpty() || bytes.size() > std::numeric_limits<int32_t>::max()) {
        return std::nullopt;
    }
    plist_t raw = nullptr;
    plist_from_memory(bytes.constData(), static_cast<uint32_t>(bytes.size()), &raw);
    const Node root(raw, &plist_free);
    return valueOf(root.get());
}

std::optional<QByteArray> propertyListToXml(const QVariant& value, QString* error)
{
    QString reason;
    const Node root = nodeOf(value, &reason);
    char* xml = nullptr;
    uint32_t length = 0;
    if (root) {
        plist_to_xml(root.get(), &xml, &length);
    }
    if (!xml) {
        if (error) {
            *error = reason.isEmpty() ? QStringLiteral("the property list could not be made") : reason;
        }
        return std::nullopt;
    }
    QByteArray bytes(xml, static_cast<qsizetype>(length));
    plist_to_xml_free(xml);
    return bytes;
}

bool hasPropertyListForm(const QVariant& value)
{
    QString reason;
    return !isNothing(value) && nodeOf(value, &reason) != nullptr;
}

} // namespace tavrix
