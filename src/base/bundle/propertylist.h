// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Property lists as Qt values: dictionaries, lists, texts, integers (qint64), reals (double), booleans, dates, data.

#include "sys/result.h"

#include <QByteArray>
#include <QVariant>

#include <optional>

namespace tavrix
{

// No value when the bytes are not a property list (XML or binary).
[[nodiscard]] std::optional<QVariant> propertyListFromBytes(const QByteArray& bytes);
// XML form; fails when a part of it has no property-list form.
[[nodiscard]] Result<QByteArray, QString> propertyListToXml(const QVariant& value);

// True when the value has a property-list form.
[[nodiscard]] bool hasPropertyListForm(const QVariant& value);

} // namespace tavrix
