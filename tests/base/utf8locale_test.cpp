// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/utf8locale.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <langinfo.h>
#include <optional>
#include <string>

namespace
{

// A variable of the environment for a while.
class Variable
{
public:
    Variable(const char* name, const char* value) : name_(name)
    {
        if (const char* before = std::getenv(name)) {
            before_ = before;
        }
        if (value != nullptr) {
            setenv(name, value, 1);
        } else {
            unsetenv(name);
        }
    }
    ~Variable()
    {
        if (before_) {
            setenv(name_, before_->c_str(), 1);
        } else {
            unsetenv(name_);
        }
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
    std::optional<std::string> before_;
};

std::string charsetAfter(const char* all, const char* characters, const char* language)
{
    const Variable everything("LC_ALL", all);
    const Variable types("LC_CTYPE", characters);
    const Variable spoken("LANG", language);
    tavrix::useUtf8Locale();
    std::setlocale(LC_CTYPE, "");
    return nl_langinfo(CODESET);
}

} // namespace

TEST(Utf8Locale, IsTakenWhereTheEnvironmentNamesNone)
{
    const std::string before = std::setlocale(LC_CTYPE, nullptr);
    EXPECT_EQ(charsetAfter(nullptr, nullptr, nullptr), "UTF-8");
    EXPECT_EQ(charsetAfter(nullptr, nullptr, "C"), "UTF-8");
    EXPECT_EQ(charsetAfter("C", nullptr, "C.UTF-8"), "UTF-8");
    EXPECT_EQ(charsetAfter("POSIX", "C", nullptr), "UTF-8");
    EXPECT_EQ(charsetAfter(nullptr, nullptr, "no_SUCH.locale"), "UTF-8");
    EXPECT_EQ(charsetAfter(nullptr, nullptr, "C.UTF-8"), "UTF-8");
    std::setlocale(LC_CTYPE, before.c_str());
}

TEST(Utf8Locale, LeavesOneThatIsNamed)
{
    const Variable everything("LC_ALL", nullptr);
    const Variable types("LC_CTYPE", nullptr);
    const Variable spoken("LANG", "C.UTF-8");
    tavrix::useUtf8Locale();
    EXPECT_EQ(std::getenv("LC_CTYPE"), nullptr);
    EXPECT_EQ(std::getenv("LC_ALL"), nullptr);
}
