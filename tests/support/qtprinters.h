// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

// Readable Qt texts in failure messages, with nothing and "" told apart.
namespace tavrix::test
{

inline std::string shown(const QString& text)
{
    return text.isNull() ? std::string("nothing") : '"' + text.toStdString() + '"';
}

inline std::vector<std::string> shown(const QStringList& list)
{
    std::vector<std::string> result;
    for (const QString& text : list) {
        result.push_back(shown(text));
    }
    return result;
}

// UTF-8 text of a table's row; nothing for a null pointer.
inline QString text(const char* utf8)
{
    return utf8 ? QString::fromUtf8(utf8) : QString();
}

// Name of a table test's instance: its row's name, which must be letters and digits.
template <typename Row> std::string rowName(const testing::TestParamInfo<Row>& info)
{
    return info.param.name;
}

} // namespace tavrix::test

// Equal as texts and in being nothing or not.
#define EXPECT_TEXT(actual, expected) EXPECT_EQ(tavrix::test::shown(actual), tavrix::test::shown(expected))
#define ASSERT_TEXT(actual, expected) ASSERT_EQ(tavrix::test::shown(actual), tavrix::test::shown(expected))
#define EXPECT_TEXTS(actual, expected)                                                                                 \
    EXPECT_EQ(tavrix::test::shown(QStringList(actual)), tavrix::test::shown(QStringList(expected)))

QT_BEGIN_NAMESPACE
inline void PrintTo(const QString& text, std::ostream* stream)
{
    *stream << tavrix::test::shown(text);
}
inline void PrintTo(const QByteArray& bytes, std::ostream* stream)
{
    *stream << testing::PrintToString(bytes.toStdString());
}
QT_END_NAMESPACE
