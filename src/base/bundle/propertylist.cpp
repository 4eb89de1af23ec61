// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/propertylist.h"

#include "base/text/text.h"
#include "sys/plistversions.h"

#include <QDateTime>
#include <QTimeZone>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>

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
    return QVariant(QDateTime::fromSecsSinceEpoch(epoch2001 + seconds).toUTC());
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
        // It could not be written again: preferences that hold it would never be saved.
        return std::isfinite(real) ? std::optional<QVariant>(real) : std::nullopt;
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

using NodeResult = Result<Node, QString>;

NodeResult nodeOf(const QVariant& value);

Node owned(plist_t node)
{
    return {node, &plist_free};
}

Failure<QString> withoutForm(const QString& what)
{
    return Failure{what + QStringLiteral(" without a property-list form")};
}

NodeResult textNode(const QString& text)
{
    if (text.isNull() || text.contains(QChar(0))) {
        return withoutForm(QStringLiteral("text"));
    }
    return owned(plist_new_string(text.toUtf8().constData()));
}

NodeResult listNode(const QVariantList& list)
{
    Node array = owned(plist_new_array());
    for (const QVariant& value : list) {
        NodeResult item = nodeOf(value);
        if (!item) {
            return item;
        }
        plist_array_append_item(array.get(), item->release());
    }
    return array;
}

// An entry of nothing is left out: that is what a missing key means.
NodeResult dictionaryNode(const QVariantMap& map)
{
    Node dictionary = owned(plist_new_dict());
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        if (isNothing(entry.value())) {
            continue;
        }
        if (entry.key().contains(QChar(0))) {
            return withoutForm(QStringLiteral("key"));
        }
        NodeResult item = nodeOf(entry.value());
        if (!item) {
            return item;
        }
        plist_dict_set_item(dictionary.get(), entry.key().toUtf8().constData(), item->release());
    }
    return dictionary;
}

NodeResult dateNode(const QDateTime& date)
{
    const qint64 seconds = date.toSecsSinceEpoch() - epoch2001;
    if (!date.isValid() || seconds < std::numeric_limits<int32_t>::min() ||
        seconds > std::numeric_limits<int32_t>::max()) {
        return withoutForm(QStringLiteral("date"));
    }
    return owned(plist_new_date(static_cast<int32_t>(seconds), 0));
}

NodeResult realNode(double number)
{
    if (!std::isfinite(number)) {
        return withoutForm(QStringLiteral("number"));
    }
    return owned(plist_new_real(number));
}

NodeResult nodeOf(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return owned(plist_new_bool(value.toBool() ? 1 : 0));
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return owned(plist_new_uint(static_cast<uint64_t>(value.toLongLong())));
    case QMetaType::Float:
        return realNode(widened(value.toFloat()));
    case QMetaType::Double:
        return realNode(value.toDouble());
    case QMetaType::QString:
        return textNode(value.toString());
    case QMetaType::QStringList:
    case QMetaType::QVariantList:
        return listNode(value.toList());
    case QMetaType::QVariantMap:
        return dictionaryNode(*static_cast<const QVariantMap*>(value.constData()));
    case QMetaType::QDateTime:
        return dateNode(value.toDateTime());
    case QMetaType::QByteArray: {
        const QByteArray data = value.toByteArray();
        return owned(plist_new_data(data.constData(), static_cast<uint64_t>(data.size())));
    }
    default:
        return withoutForm(QString::fromLatin1(value.isValid() ? value.typeName() : "nothing"));
    }
}

} // namespace

std::optional<QVariant> propertyListFromBytes(const QByteArray& bytes)
{
    if (bytes.size() > std::numeric_limits<int32_t>::max()) {
        return std::nullopt;
    }
    plist_t raw = nullptr;
    readPlist(bytes.constData(), static_cast<uint32_t>(bytes.size()), &raw);
    const Node root(raw, &plist_free);
    return valueOf(root.get());
}

Result<QByteArray, QString> propertyListToXml(const QVariant& value)
{
    const NodeResult root = nodeOf(value);
    if (!root) {
        return Failure{root.reason()};
    }
    char* xml = nullptr;
    uint32_t length = 0;
    plist_to_xml((*root).get(), &xml, &length);
    if (!xml) {
        return Failure{QStringLiteral("the property list could not be made")};
    }
    QByteArray bytes(xml, static_cast<qsizetype>(length));
    freePlistText(xml);
    return bytes;
}

bool hasPropertyListForm(const QVariant& value)
{
    return !isNothing(value) && nodeOf(value).hasValue();
}

} // namespace tavrix
