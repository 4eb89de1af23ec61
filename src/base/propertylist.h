#pragma once

#include <QByteArray>
#include <QVariant>

#include <optional>

// Property lists as Qt values: dictionaries, lists, texts, integers (qint64), reals (double), booleans, dates, data.
namespace tavrix
{

// No value when the bytes are not a property list (XML or binary).
[[nodiscard]] std::optional<QVariant> propertyListFromBytes(const QByteArray& bytes);
// XML form; no value when a part of it has no property-list form, with the reason in *error when given.
[[nodiscard]] std::optional<QByteArray> propertyListToXml(const QVariant& value, QString* error = nullptr);

// True when the value has a property-list form.
[[nodiscard]] bool hasPropertyListForm(const QVariant& value);

} // namespace tavrix
