// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/plistcheck.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tavrix
{

namespace
{

std::string repeated(const std::string& text, int times)
{
    std::string all;
    for (int index = 0; index < times; ++index) {
        all += text;
    }
    return all;
}

// A binary property list of these objects, one byte a reference; the first is at the top.
std::string binary(const std::vector<std::string>& objects, const std::string& version = "bplist00")
{
    std::string bytes = version;
    std::string offsets;
    for (const std::string& object : objects) {
        offsets += static_cast<char>(bytes.size() >> 8);
        offsets += static_cast<char>(bytes.size() & 255);
        bytes += object;
    }
    const std::size_t table = bytes.size();
    bytes += offsets + std::string(6, '\0') + "\x02\x01";
    for (const std::size_t number : {objects.size(), std::size_t{0}, table}) {
        for (int shift = 56; shift >= 0; shift -= 8) {
            bytes += static_cast<char>(number >> shift & 255);
        }
    }
    return bytes;
}

// Lists that each hold the next one `members` times.
std::vector<std::string> nested(int depth, int members)
{
    std::vector<std::string> objects;
    for (int index = 1; index < depth; ++index) {
        objects.push_back(static_cast<char>(0xA0 + members) +
                          std::string(static_cast<std::size_t>(members), static_cast<char>(index)));
    }
    objects.emplace_back("\xA0");
    return objects;
}

const std::string tooDeep = "the property list is nested too deeply";
const std::string nulInside = "there is a NUL in a text of the property list";
const std::string damaged = "the property list is damaged";

struct Row {
    std::string name;
    std::string bytes;
    std::string reason; // "" when it is safe
};

class PlistCheck : public testing::TestWithParam<Row>
{
};

TEST_P(PlistCheck, TellsWhatIsSafeToRead)
{
    const Result<PlistForm> form = checkedPlist(GetParam().bytes);
    EXPECT_EQ(form.hasValue(), GetParam().reason.empty());
    EXPECT_EQ(form.reason(), GetParam().reason);
}

const std::string plain = "<dict><key>k</key><string>v</string><true/></dict>";

INSTANTIATE_TEST_SUITE_P(
    Lists, PlistCheck,
    testing::Values(
        Row{"empty", "", "no property list"}, Row{"json", "[[[]]]", "no property list"}, Row{"plain", plain, ""},
        Row{"mark_and_blanks", "\xEF\xBB\xBF \n<?xml version=\"1.0\"?><!DOCTYPE plist>" + plain, ""},
        Row{"brackets_that_are_no_elements", "<!-- <a><b> --><![CDATA[<a><b>]]><?x <a>?>" + plain, ""},
        Row{"deep_enough", repeated("<array>", 64) + repeated("</array>", 64), ""},
        Row{"too_deep", repeated("<array>", 65) + repeated("</array>", 65), tooDeep},
        Row{"too_deep_behind_false_closings", repeated("<array></string>", 65), damaged},
        Row{"too_deep_with_blanks", repeated("<array a=\"b\" >", 65), tooDeep},
        Row{"nul_in_xml", std::string("<string>a\0b</string>", 20), nulInside},
        Row{"closing_only", "</array>", damaged}, Row{"cut", "<dict><key", ""},
        Row{"binary_values", binary({std::string("\xD1\x01\x02"), "\x51k", std::string("\x62\0v\0w", 5)}), ""},
        Row{"binary_integer_length", binary({std::string("\x5F\x10\x02") + "ab"}), ""},
        Row{"binary_deep_enough", binary(nested(64, 1)), ""}, Row{"binary_too_deep", binary(nested(65, 1)), tooDeep},
        Row{"binary_a_list_in_itself", binary({std::string("\xA1\0", 2)}), tooDeep},
        Row{"binary_millions_of_values", binary(nested(30, 14)), tooDeep},
        Row{"binary_nul",
            binary({std::string("\x53"
                                "a\0b",
                                4)}),
            nulInside},
        Row{"binary_wide_nul", binary({std::string("\x62\0a\0\0", 5)}), nulInside},
        Row{"binary_text_beyond_the_end",
            binary({"\x55"
                    "ab"}),
            damaged},
        Row{"binary_length_beyond_the_end", binary({std::string("\x5F\x17") + std::string(8, '\xFF')}), damaged},
        Row{"binary_members_beyond_the_end", binary({"\xAF\x10\xFF"}), damaged},
        Row{"binary_unknown_member", binary({"\xA1\x09"}), damaged}, Row{"binary_no_objects", binary({}), damaged},
        Row{"binary_header_only", "bplist00", damaged}),
    [](const auto& row) { return row.param.name; });

TEST(PlistCheckForm, IsToldByTheFirstBytes)
{
    EXPECT_EQ(*checkedPlist(plain), PlistForm::Xml);
    EXPECT_EQ(*checkedPlist(binary({"\x51k"})), PlistForm::Binary);
}

} // namespace

} // namespace tavrix
