// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/plistcheck.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tavrix
{

namespace
{

constexpr std::size_t deepest = 64;
constexpr std::size_t mostValues = 2'000'000;

const Failure<std::string> tooDeep{"the property list is nested too deeply"};
const Failure<std::string> nulInside{"there is a NUL in a text of the property list"};
const Failure<std::string> damaged{"the property list is damaged"};

// Elements of an XML text, one after the other; comments and declarations are passed over.
class Elements
{
public:
    explicit Elements(std::string_view text) : rest_(text) {}

    // What stands between the next "<" and its ">"; nothing at the end, and for one that does not end.
    std::optional<std::string_view> next()
    {
        for (;;) {
            const auto start = rest_.find('<');
            if (start == std::string_view::npos) {
                return std::nullopt;
            }
            rest_.remove_prefix(start + 1);
            if (const std::string_view end = endOfPassedOver(); !end.empty()) {
                skipBehind(end);
                continue;
            }
            const auto stop = rest_.find('>');
            if (stop == std::string_view::npos) {
                return std::nullopt;
            }
            const std::string_view element = rest_.substr(0, stop);
            rest_.remove_prefix(stop + 1);
            return element;
        }
    }

private:
    [[nodiscard]] std::string_view endOfPassedOver() const
    {
        if (rest_.starts_with("!--")) {
            return "-->";
        }
        if (rest_.starts_with("![CDATA[")) {
            return "]]>";
        }
        if (rest_.starts_with('?')) {
            return "?>";
        }
        return rest_.starts_with('!') ? ">" : "";
    }

    void skipBehind(std::string_view end)
    {
        const auto found = rest_.find(end);
        rest_.remove_prefix(found == std::string_view::npos ? rest_.size() : found + end.size());
    }

    std::string_view rest_;
};

Result<PlistForm> checkedXml(std::string_view text)
{
    if (text.find('\0') != std::string_view::npos) {
        return nulInside;
    }
    std::vector<std::string_view> open;
    Elements elements(text);
    while (const auto element = elements.next()) {
        const std::string_view name = element->substr(0, element->find_first_of(" \t\r\n/", 1));
        if (element->starts_with('/')) {
            // A closing that fits no opening would hide how deep the rest stands.
            if (open.empty() || open.back() != name.substr(1)) {
                return damaged;
            }
            open.pop_back();
        } else if (!element->ends_with('/')) {
            open.push_back(name);
        }
        if (open.size() > deepest) {
            return tooDeep;
        }
    }
    return PlistForm::Xml;
}

// The objects of a binary property list, from the one at the top on.
class BinaryObjects
{
public:
    explicit BinaryObjects(std::string_view bytes) : bytes_(bytes) {}

    Result<void> check()
    {
        if (bytes_.size() < headerSize + trailerSize) {
            return damaged;
        }
        const std::size_t trailer = bytes_.size() - trailerSize;
        offsetSize_ = byteAt(trailer + 6);
        referenceSize_ = byteAt(trailer + 7);
        count_ = number(trailer + 8, 8);
        table_ = number(trailer + 24, 8);
        const bool sensible = offsetSize_ >= 1 && offsetSize_ <= 8 && referenceSize_ >= 1 && referenceSize_ <= 8 &&
                              table_ >= headerSize && table_ <= trailer && count_ <= (trailer - table_) / offsetSize_;
        return sensible ? checkObject(number(trailer + 16, 8), 1) : Result<void>(damaged);
    }

private:
    static constexpr std::size_t headerSize = 8;
    static constexpr std::size_t trailerSize = 32;

    // An object's kind and, where it has one, its number of bytes, units or members, which begin at `content`.
    struct Object {
        std::uint8_t kind = 0;
        std::uint64_t length = 0;
        std::uint64_t content = 0;
    };

    [[nodiscard]] std::uint8_t byteAt(std::uint64_t position) const
    {
        return static_cast<std::uint8_t>(bytes_[static_cast<std::size_t>(position)]);
    }

    // Big-endian; the bytes are there.
    [[nodiscard]] std::uint64_t number(std::uint64_t position, std::uint64_t size) const
    {
        std::uint64_t value = 0;
        for (std::uint64_t index = 0; index < size; ++index) {
            value = value << 8 | byteAt(position + index);
        }
        return value;
    }

    // Nothing where the object does not lie between the header and the table of offsets.
    [[nodiscard]] std::optional<Object> objectAt(std::uint64_t position) const
    {
        if (position < headerSize || position >= table_) {
            return std::nullopt;
        }
        Object object;
        object.kind = static_cast<std::uint8_t>(byteAt(position) >> 4);
        object.length = byteAt(position) & 15U;
        object.content = position + 1;
        const bool isCounted = object.kind >= 4 && object.kind != 8;
        if (isCounted && object.length == 15) {
            // The length stands in an integer of its own.
            const std::uint64_t size =
                object.content < table_ ? std::uint64_t{1} << (byteAt(object.content) & 15U) : table_;
            if (size > 8 || table_ - object.content - 1 < size) {
                return std::nullopt;
            }
            object.length = number(object.content + 1, size);
            object.content += 1 + size;
        }
        return object;
    }

    [[nodiscard]] bool holds(const Object& object, std::uint64_t unit) const
    {
        return object.length <= (table_ - object.content) / unit;
    }

    [[nodiscard]] Result<void> checkText(const Object& object, std::uint64_t unit) const
    {
        if (!holds(object, unit)) {
            return damaged;
        }
        for (std::uint64_t index = 0; index < object.length; ++index) {
            if (number(object.content + index * unit, unit) == 0) {
                return nulInside;
            }
        }
        return {};
    }

    Result<void> checkMembers(const Object& object, std::uint64_t perMember, std::size_t depth)
    {
        if (!holds(object, perMember * referenceSize_)) {
            return damaged;
        }
        for (std::uint64_t index = 0; index < object.length * perMember; ++index) {
            const std::uint64_t reference = number(object.content + index * referenceSize_, referenceSize_);
            if (Result<void> member = checkObject(reference, depth + 1); !member) {
                return member;
            }
        }
        return {};
    }

    Result<void> checkObject(std::uint64_t reference, std::size_t depth)
    {
        if (reference >= count_) {
            return damaged;
        }
        if (depth > deepest || ++values_ > mostValues) {
            return tooDeep;
        }
        const auto object = objectAt(number(table_ + reference * offsetSize_, offsetSize_));
        if (!object) {
            return damaged;
        }
        switch (object->kind) {
        case 5:
            return checkText(*object, 1);
        case 6:
            return checkText(*object, 2);
        case 10:
        case 12:
            return checkMembers(*object, 1, depth);
        case 13:
            return checkMembers(*object, 2, depth);
        default:
            return {};
        }
    }

    std::string_view bytes_;
    std::uint64_t offsetSize_ = 0;
    std::uint64_t referenceSize_ = 0;
    std::uint64_t count_ = 0;
    std::uint64_t table_ = 0;
    std::size_t values_ = 0;
};

} // namespace

Result<PlistForm> checkedPlist(std::string_view bytes)
{
    if (bytes.starts_with("bplist0")) {
        const Result<void> sound = BinaryObjects(bytes).check();
        return sound ? Result<PlistForm>(PlistForm::Binary) : Failure{sound.reason()};
    }
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    std::string_view text = bytes;
    if (text.starts_with(byteOrderMark)) {
        text.remove_prefix(byteOrderMark.size());
    }
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    return text.starts_with('<') ? checkedXml(text) : Failure{"no property list"};
}

} // namespace tavrix
