// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Which encoders are installed. Read afresh on each call.

#include "quicktime/model/componentregistry.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace tavrix
{

// One installed component. Texts are nothing until set.
class QTCompDesc
{
public:
    // The component's information; when it cannot be read only component() is set, and the error is logged.
    [[nodiscard]] static QTCompDesc withComponent(ComponentHandle component);

    // Type, subtype and manufacturer are four-character codes as OSTypeToNSString writes them.
    [[nodiscard]] QString name() const { return name_; }
    [[nodiscard]] QString type() const { return type_; }
    [[nodiscard]] QString subType() const { return subType_; }
    [[nodiscard]] QString manufacturer() const { return manufacturer_; }
    [[nodiscard]] quint32 flags() const { return flags_; }
    [[nodiscard]] QString threadsafe() const { return threadsafe_; } // "Yes" or "No"
    [[nodiscard]] ComponentHandle component() const { return component_; }
    [[nodiscard]] ComponentDescription componentDescription() const { return description_; }

    void setName(const QString& name) { name_ = name; }
    void setType(const QString& type) { type_ = type; }
    void setSubType(const QString& subType) { subType_ = subType; }
    void setManufacturer(const QString& manufacturer) { manufacturer_ = manufacturer; }
    void setFlags(quint32 flags) { flags_ = flags; }
    void setThreadSafe(const QString& threadsafe) { threadsafe_ = threadsafe; }

private:
    QString name_;
    QString type_;
    QString subType_;
    QString manufacturer_;
    quint32 flags_ = 0;
    QString threadsafe_;
    ComponentHandle component_ = nullptr;
    ComponentDescription description_;
};

// Characters 0x20 to 0x7E as they are, any other byte as "$" and two hexadecimal digits; "" for 0.
[[nodiscard]] QString OSTypeToNSString(quint32 code);
// The bytes after the length byte up to the first zero; "**NO NAME**" when the length byte is 0. The buffer ends with a
// zero.
[[nodiscard]] QString PStringToNSString(const unsigned char* pascalText);

// Every installed component, in the registry's order.
[[nodiscard]] QList<QTCompDesc> componentsCollecte();
// For each code 1 when a component's upper-cased subtype contains it, else 0. An empty code is never found.
[[nodiscard]] QList<int> codecsCheck(const QStringList& codes);
// "name   (type:subtype:manufacturer)" of each ProRes encoder found, at most four.
[[nodiscard]] QStringList codecsProresCheck();

} // namespace tavrix
