#pragma once

#include <QByteArray>
#include <QVariant>

#include <optional>

// Property lists as Qt values: dictionaries, lists, texts, integers (qint64), reals (double), booleans, dates, data.
namespace tavrix {

// No value when the bytes are not a property list (XML or binary).
[[nodiscard]] std::optional<QVariant> propertyListFromBytes(const QByteArray& bytes);
// XML form; no value when a part of it has no property-list form, with the reason in *error when given.
[[nodiscard]] std::optional<QByteArray> propertyListToXml(const QVariant& value, QString* error = nullptr);

// Writes the XML form atomically to the tilde-expanded path (mode 0600, never through a link).
bool createNewPlist(const QString& path, const QVariant& value);
// Dictionary of the tilde-expanded file; a number under "Birthdate" reads 1564.0. No value when unreadable.
[[nodiscard]] std::optional<QVariantMap> readPlist(const QString& path);

} // namespace tavrix
