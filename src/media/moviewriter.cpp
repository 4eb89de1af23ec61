// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/moviewriter.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tavrix
{

namespace
{

// A text about a clip is a line; what is longer is something else.
constexpr std::size_t longestText = 1024;
constexpr std::size_t mostKeys = 1024;

// The first byte of QuickTime's texts is the copyright sign of the Mac's character set.
constexpr std::uint32_t textAtom(const char (&name)[4])
{
    return 0xA9000000U | (std::uint32_t(std::uint8_t(name[0])) << 16) | (std::uint32_t(std::uint8_t(name[1])) << 8) |
           std::uint32_t(std::uint8_t(name[2]));
}

std::string textOf(ByteView bytes)
{
    const ByteView line = bytes.first(std::min(bytes.size(), longestText));
    const auto end = std::find(line.begin(), line.end(), std::uint8_t{0});
    return {line.begin(), end};
}

void setFirst(std::string& place, const std::string& text)
{
    if (place.empty()) {
        place = text;
    }
}

// QuickTime's user data: a length and a language before each text, of which the first counts.
std::string quickTimeText(ByteView payload)
{
    FieldReader reader(payload);
    const std::size_t length = reader.u16();
    reader.skip(2);
    if (!reader.ok() || length > payload.size() - 4) {
        return {};
    }
    return textOf(payload.subspan(4, length));
}

// The mobile form: a version, flags and a language before the text.
std::string mobileText(ByteView payload)
{
    return payload.size() > 6 ? textOf(payload.subspan(6)) : std::string();
}

// The value of a key or of a tag: behind its kind and its language.
std::string valueText(ByteView item)
{
    const ByteView data = childPayload(item, atomType("data"));
    return data.size() > 8 ? textOf(data.subspan(8)) : std::string();
}

std::vector<std::string> keyNames(ByteView keys)
{
    std::vector<std::string> names;
    for (const Atom& atom : childAtoms(keys.subspan(std::min<std::size_t>(keys.size(), 8)))) {
        if (names.size() >= mostKeys) {
            break;
        }
        names.push_back(textOf(atom.payload));
    }
    return names;
}

void readKey(const std::string& name, const std::string& value, MovieWords& words)
{
    constexpr std::string_view apple = "com.apple.quicktime.";
    words.android = words.android || name.starts_with("com.android.");
    const std::string_view last =
        name.starts_with(apple) ? std::string_view(name).substr(apple.size()) : std::string_view();
    if (last == "creationdate") {
        words.dates.insert(words.dates.begin(), value);
    } else if (last == "make" || name == "com.android.manufacturer") {
        setFirst(words.make, value);
    } else if (last == "model" || name == "com.android.model") {
        setFirst(words.model, value);
    } else if (last == "software") {
        setFirst(words.software, value);
    }
}

void readTag(std::uint32_t type, const std::string& value, MovieWords& words)
{
    if (type == textAtom("day")) {
        words.dates.push_back(value);
    } else if (type == textAtom("mak")) {
        setFirst(words.make, value);
    } else if (type == textAtom("mod")) {
        setFirst(words.model, value);
    } else if (type == textAtom("swr") || type == textAtom("too")) {
        setFirst(words.software, value);
    }
}

// QuickTime's form begins with its atoms at once, the one of MP4 with a version and flags.
void readMeta(ByteView meta, MovieWords& words)
{
    FieldReader reader(meta, 4);
    const bool plain = reader.u32() == atomType("hdlr");
    const ByteView atoms = plain ? meta : meta.subspan(std::min<std::size_t>(meta.size(), 4));
    const std::vector<std::string> names = keyNames(childPayload(atoms, atomType("keys")));
    for (const Atom& item : childAtoms(childPayload(atoms, atomType("ilst")))) {
        const std::string value = valueText(item.payload);
        if (item.type >= 1 && item.type <= names.size()) {
            readKey(names[item.type - 1], value, words);
        } else {
            readTag(item.type, value, words);
        }
    }
}

void readUserData(ByteView udta, MovieWords& words)
{
    for (const Atom& atom : childAtoms(udta)) {
        if (atom.type == atomType("meta")) {
            readMeta(atom.payload, words);
        } else if (atom.type == atomType("date")) {
            words.dates.push_back(textOf(atom.payload));
            words.dates.push_back(mobileText(atom.payload));
            words.dates.push_back(quickTimeText(atom.payload));
        } else if (atom.type == atomType("manu")) {
            setFirst(words.make, mobileText(atom.payload));
        } else if (atom.type == atomType("modl")) {
            setFirst(words.model, mobileText(atom.payload));
        } else {
            readTag(atom.type, quickTimeText(atom.payload), words);
        }
    }
}

std::string handlerName(ByteView trak)
{
    const ByteView hdlr = childPayload(childPayload(trak, atomType("mdia")), atomType("hdlr"));
    if (hdlr.size() <= 24) {
        return {};
    }
    const ByteView name = hdlr.subspan(24);
    // QuickTime writes the length before the text, MP4 a zero behind it.
    return textOf(name.front() == name.size() - 1 ? name.subspan(1) : name);
}

std::string inSmallLetters(std::string text)
{
    for (char& letter : text) {
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return text;
}

template <std::size_t count>
bool beginsWithOne(const std::string& text, const std::array<std::string_view, count>& beginnings)
{
    const std::string small = inSmallLetters(text);
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&small](std::string_view beginning) { return small.starts_with(beginning); });
}

// Makers of phones that make no cameras, in small letters.
constexpr std::array<std::string_view, 24> phoneMakes = {
    "apple",    "google", "huawei",     "xiaomi", "oneplus", "oppo",  "vivo",      "realme",
    "motorola", "nokia",  "htc",        "zte",    "honor",   "meizu", "lge",       "lg elec",
    "palm",     "lenovo", "blackberry", "hmd",    "tcl",     "vertu", "microsoft", "sony ericsson"};
// Makers of both are told apart by the model.
constexpr std::array<std::string_view, 11> phoneModels = {"iphone", "ipad", "ipod",   "pixel", "nexus", "sm-",
                                                          "gt-",    "sgh-", "xperia", "xq-",   "lumia"};
constexpr std::array<std::string_view, 2> mobileBrands = {"3gp", "3g2"};
// Programs that write again what others recorded; their clock is UTC as the format says.
constexpr std::array<std::string_view, 3> programs = {"lavf", "handbrake", "google"};
constexpr std::array<std::string_view, 2> programHandlers = {"core media", "iso media file produced by google"};

// Android's own writer, whichever the maker is.
bool isAndroidHandler(const std::string& name)
{
    return name == "VideoHandle" || name == "SoundHandle";
}

} // namespace

MovieWords movieWords(ByteView moov)
{
    MovieWords words;
    for (const Atom& atom : childAtoms(moov)) {
        if (atom.type == atomType("meta")) {
            readMeta(atom.payload, words);
        } else if (atom.type == atomType("udta")) {
            readUserData(atom.payload, words);
        } else if (atom.type == atomType("trak")) {
            words.handlers.push_back(handlerName(atom.payload));
        }
    }
    return words;
}

HeaderWriter headerWriter(const MovieWords& words, std::uint32_t brand)
{
    const std::string brandText = {static_cast<char>(brand >> 24), static_cast<char>(brand >> 16),
                                   static_cast<char>(brand >> 8), static_cast<char>(brand)};
    if (words.android || std::any_of(words.handlers.begin(), words.handlers.end(), isAndroidHandler) ||
        beginsWithOne(words.make, phoneMakes) || beginsWithOne(words.model, phoneModels) ||
        beginsWithOne(brandText, mobileBrands)) {
        return HeaderWriter::Phone;
    }
    const bool rewritten = std::any_of(words.handlers.begin(), words.handlers.end(), [](const std::string& handler) {
        return beginsWithOne(handler, programHandlers);
    });
    return rewritten || beginsWithOne(words.software, programs) ? HeaderWriter::Program : HeaderWriter::Camera;
}

} // namespace tavrix
