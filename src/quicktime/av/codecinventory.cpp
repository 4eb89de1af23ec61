// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/av/codecinventory.h"

#include "base/text/log.h"
#include "base/text/text.h"

#include <array>
#include <cstring>

namespace tavrix
{

namespace
{

constexpr quint32 cmpThreadSafe = 0x10000000;
constexpr quint32 cmpIsMissing = 0x20000000;
constexpr std::size_t nameBufferSize = 200;

// A component manager hands out names as Pascal strings in a zero-filled buffer; longer names are cut there.
std::array<unsigned char, nameBufferSize> pascalName(const QByteArray& name)
{
    std::array<unsigned char, nameBufferSize> buffer{};
    const std::size_t length = std::min<std::size_t>(static_cast<std::size_t>(name.size()), nameBufferSize - 2);
    buffer[0] = static_cast<unsigned char>(length);
    std::memcpy(buffer.data() + 1, name.constData(), length);
    return buffer;
}

QString identityText(const QTCompDesc& component)
{
    return component.type().left(4) + QLatin1Char(':') + component.subType().left(4) + QLatin1Char(':') +
           component.manufacturer().left(4);
}

bool isPresent(const QString& code, const QList<QTCompDesc>& components)
{
    for (const QTCompDesc& component : components) {
        if (containsText(component.subType().left(4).toUpper(), code)) {
            return true;
        }
    }
    return false;
}

} // namespace

QTCompDesc QTCompDesc::withComponent(ComponentHandle component)
{
    QTCompDesc result;
    result.component_ = component;
    ComponentDescription description;
    QByteArray name;
    const int error = componentRegistry().componentInfo(component, description, name);
    if (error != 0) {
        logLine(QStringLiteral("GetComponentInfo() returned error %d\n"), {error});
        return result;
    }
    result.description_ = description;
    result.name_ = PStringToNSString(pascalName(name).data());
    result.type_ = OSTypeToNSString(description.componentType);
    result.subType_ = OSTypeToNSString(description.componentSubType);
    result.manufacturer_ = OSTypeToNSString(description.componentManufacturer);
    result.flags_ = description.componentFlags;
    const bool isThreadSafe = (description.componentFlags & cmpThreadSafe) != 0;
    result.threadsafe_ = isThreadSafe ? QStringLiteral("Yes") : QStringLiteral("No");
    return result;
}

QString OSTypeToNSString(quint32 code)
{
    QString text = QLatin1String("");
    if (code == 0) {
        return text;
    }
    for (int shift = 24; shift >= 0; shift -= 8) {
        const quint32 byte = (code >> shift) & 0xFFU;
        if (byte >= 0x20 && byte <= 0x7E) {
            text += QLatin1Char(static_cast<char>(byte));
        } else {
            text += formatText(QStringLiteral("$%02x"), {byte});
        }
    }
    return text;
}

QString PStringToNSString(const unsigned char* pascalText)
{
    if (pascalText[0] == 0) {
        return QStringLiteral("**NO NAME**");
    }
    return QString::fromLatin1(reinterpret_cast<const char*>(pascalText) + 1);
}

QList<QTCompDesc> componentsCollecte()
{
    ComponentDescription search;
    search.componentFlagsMask = cmpIsMissing;
    ComponentRegistry& registry = componentRegistry();
    QList<QTCompDesc> components;
    components.reserve(registry.countComponents(search));
    ComponentHandle component = nullptr;
    while ((component = registry.findNextComponent(component, search)) != nullptr) {
        components.append(QTCompDesc::withComponent(component));
    }
    return components;
}

QList<int> codecsCheck(const QStringList& codes)
{
    const QList<QTCompDesc> components = codes.isEmpty() ? QList<QTCompDesc>() : componentsCollecte();
    QList<int> present;
    for (const QString& code : codes) {
        const bool found = isPresent(code, components);
        if (found) {
            logDebug(QStringLiteral("%@                :-)"), {code});
        }
        present.append(found ? 1 : 0);
    }
    return present;
}

QStringList codecsProresCheck()
{
    const QStringList wanted{QStringLiteral("imco:ap4h:appl"), QStringLiteral("imco:apch:appl"),
                             QStringLiteral("imco:apco:appl"), QStringLiteral("imco:apcs:appl")};
    const QList<QTCompDesc> components = componentsCollecte();
    QStringList found;
    for (const QString& prores : wanted) {
        for (const QTCompDesc& component : components) {
            const QString identity = identityText(component);
            if (!containsText(identity, prores)) {
                continue;
            }
            logDebug(QStringLiteral("ProRes name         : %@"), {component.name()});
            found.append(formatText(QStringLiteral("%@   (%@)"), {component.name(), identity}));
            break;
        }
    }
    return found;
}

} // namespace tavrix
