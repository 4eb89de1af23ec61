// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a property list: what can be read can be written, and reads as the same again.
#include "base/bundle/propertylist.h"
#include "input.h"
#include "sys/plistcheck.h"
#include "tools/movencoder/settings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tavrix;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const std::optional<QVariant> value = propertyListFromBytes(bytes);
    fuzz::require(!value || checkedPlist(std::string_view(bytes.constData(), size)));
    if (value) {
        fuzz::require(hasPropertyListForm(*value));
        const Result<QByteArray, QString> xml = propertyListToXml(*value);
        fuzz::require(bool(xml));
        const std::optional<QVariant> again = propertyListFromBytes(*xml);
        fuzz::require(again.has_value());
        fuzz::require(*propertyListToXml(*again) == *xml);
    }
    static_cast<void>(movencoder::parseSettings(bytes.toStdString()));
    return 0;
}
