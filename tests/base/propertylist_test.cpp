// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/propertylist.h"
#include "base/store/propertylistfile.h"
#include "base/text/format.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QDateTime>
#include <QFile>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <sys/stat.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

QVariant afterReload(const QVariant& value)
{
    const Result<QByteArray, QString> xml = propertyListToXml(value);
    return xml ? propertyListFromBytes(*xml).value_or(QVariant()) : QVariant();
}

struct ValueRow {
    std::string name;
    QVariant value;
    QVariant expected;
};

class RoundTrip : public testing::TestWithParam<ValueRow>
{
};

TEST_P(RoundTrip, KeepsTheValue)
{
    const QVariant reloaded = afterReload(QVariantMap{{QStringLiteral("k"), GetParam().value}});
    const QVariant value = reloaded.toMap().value(QStringLiteral("k"));
    EXPECT_EQ(value, GetParam().expected) << value.typeName();
    EXPECT_EQ(value.typeId(), GetParam().expected.typeId());
}

QVariant string(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

INSTANTIATE_TEST_SUITE_P(
    Values, RoundTrip,
    testing::Values(ValueRow{"Int", 5, qint64{5}}, ValueRow{"Negative", -5, qint64{-5}},
                    ValueRow{"Largest", std::numeric_limits<qint64>::max(), std::numeric_limits<qint64>::max()},
                    ValueRow{"Smallest", std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::min()},
                    ValueRow{"True", true, true}, ValueRow{"False", false, false}, ValueRow{"Float", 1.77F, 1.77},
                    ValueRow{"Double", 29.97, 29.97}, ValueRow{"Third", 1.0 / 3.0, 1.0 / 3.0},
                    ValueRow{"Tiny", 1e-300, 1e-300}, ValueRow{"Text", string("clip"), string("clip")},
                    ValueRow{"EmptyText", string(""), string("")},
                    ValueRow{"Blanks", string("  a b  "), string("  a b  ")},
                    ValueRow{"LineEnds", string("a\r\nb\n"), string("a\r\nb\n")},
                    ValueRow{"Markup", string("<a>&amp;\"'"), string("<a>&amp;\"'")},
                    ValueRow{"Control", string("a\x01\x1F"), string("a\x01\x1F")},
                    ValueRow{"Emoji", string("é😀"), string("é😀")},
                    ValueRow{"TextList", QStringList{QStringLiteral("a"), QStringLiteral("b")},
                             QVariantList{string("a"), string("b")}},
                    ValueRow{"List", QVariantList{1, string("b"), QVariantList{}},
                             QVariantList{qint64{1}, string("b"), QVariantList{}}},
                    ValueRow{"Map", QVariantMap{{QStringLiteral("<&>"), 1}, {QStringLiteral(""), 2}},
                             QVariantMap{{QStringLiteral("<&>"), qint64{1}}, {QStringLiteral(""), qint64{2}}}},
                    ValueRow{"EmptyMap", QVariantMap{}, QVariantMap{}},
                    ValueRow{"Data", QByteArray("\0\xFF", 2), QByteArray("\0\xFF", 2)},
                    ValueRow{"Date", QDateTime::fromSecsSinceEpoch(1299230430).toUTC(),
                             QDateTime::fromSecsSinceEpoch(1299230430).toUTC()}),
    rowName<ValueRow>);

TEST(PropertyList, AFloatKeepsItsText)
{
    for (const float number : {1.77F, 0.1F, 23.976F, 416666.656F, 16777216.0F, 1e-5F}) {
        const QVariant reloaded = afterReload(QVariantMap{{QStringLiteral("k"), number}});
        EXPECT_TEXT(textOf(reloaded.toMap().value(QStringLiteral("k"))), textOf(QVariant(number)));
    }
}

TEST(PropertyList, AnEntryOfNothingIsLeftOut)
{
    const QVariant reloaded = afterReload(QVariantMap{{QStringLiteral("a"), QVariant()},
                                                      {QStringLiteral("b"), QVariant(QString())},
                                                      {QStringLiteral("c"), QStringLiteral("")}});
    EXPECT_TEXTS(reloaded.toMap().keys(), QStringList{QStringLiteral("c")});
}

TEST(PropertyList, WhatHasNoFormIsRefusedWithAReason)
{
    const QVariant rows[] = {QVariant(),
                             QVariant(QString()),
                             QVariant(std::nan("")),
                             QVariant(std::numeric_limits<double>::infinity()),
                             QVariant(QStringLiteral("a") + QChar(0)),
                             QVariant(QVariantList{QVariant()}),
                             QVariant(QVariantMap{{QString(QChar(0)), 1}}),
                             QVariant(QVariantMap{{QStringLiteral("k"), QVariantList{QVariant(std::nan(""))}}}),
                             QVariant::fromValue(static_cast<QObject*>(nullptr))};
    for (const QVariant& value : rows) {
        const Result<QByteArray, QString> xml = propertyListToXml(value);
        EXPECT_FALSE(xml);
        EXPECT_TRUE(xml.reason().endsWith(QStringLiteral(" without a property-list form")));
        EXPECT_FALSE(hasPropertyListForm(value));
    }
    EXPECT_TRUE(hasPropertyListForm(QStringLiteral("")));
    EXPECT_TRUE(hasPropertyListForm(QVariantMap{}));
}

TEST(PropertyList, OtherBytesAreNone)
{
    const char* const entity = "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY a \"b\">]>"
                               "<plist version=\"1.0\"><string>&a;</string></plist>";
    for (const char* bytes :
         {"", "garbage", "<html></html>", "bplist00", "<plist version=\"1.0\"><dict><key>a</key><string>b",
          "<plist version=\"1.0\"><dict><key>a</key><string>\xC3</string></dict></plist>", entity}) {
        EXPECT_FALSE(propertyListFromBytes(bytes).has_value()) << bytes;
    }
}

// A number that could be read but never be written kept the preferences from being saved.
TEST(PropertyList, NumbersWithoutAFormAreNotRead)
{
    for (const char* number : {"nan", "inf", "-inf", "1e999"}) {
        const QByteArray bytes =
            QByteArray("<plist version=\"1.0\"><dict><key>a</key><real>") + number + "</real></dict></plist>";
        EXPECT_FALSE(propertyListFromBytes(bytes).has_value()) << number;
    }
    EXPECT_EQ(propertyListFromBytes("<plist version=\"1.0\"><real>-1.5e3</real></plist>"), QVariant(-1500.0));
}

TEST(PropertyListFile, IsWrittenPrivatelyAndRead)
{
    const TempFolder folder;
    const QString file = folder.makeFile(QStringLiteral("a b.plist"), "old");
    EXPECT_TRUE(
        createNewPlist(file, QVariantMap{{QStringLiteral("Birthdate"), 7},
                                         {QStringLiteral("name"), QStringLiteral("é")},
                                         {QStringLiteral("inner"), QVariantMap{{QStringLiteral("Birthdate"), 7}}}}));
    EXPECT_TRUE(readBytes(file).value().startsWith("<?xml"));
    struct stat status {
    };
    ASSERT_EQ(stat(QFile::encodeName(file).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    const QVariantMap read = readPlist(file).value();
    EXPECT_EQ(read.value(QStringLiteral("Birthdate")), QVariant(1564.0));
    EXPECT_TEXT(read.value(QStringLiteral("name")).toString(), QStringLiteral("é"));
    EXPECT_EQ(read.value(QStringLiteral("inner")).toMap().value(QStringLiteral("Birthdate")), QVariant(qint64{7}));
}

TEST(PropertyListFile, OnlyANumberIsABirthdate)
{
    const TempFolder folder;
    const QString file = folder.path(QStringLiteral("a"));
    ASSERT_TRUE(createNewPlist(file, QVariantMap{{QStringLiteral("Birthdate"), QStringLiteral("7")}}));
    EXPECT_EQ(readPlist(file).value().value(QStringLiteral("Birthdate")), QVariant(QStringLiteral("7")));
    for (const QVariant& number : {QVariant(7), QVariant(-7.5), QVariant(true)}) {
        ASSERT_TRUE(createNewPlist(file, QVariantMap{{QStringLiteral("Birthdate"), number}}));
        EXPECT_EQ(readPlist(file).value().value(QStringLiteral("Birthdate")), QVariant(1564.0));
    }
    ASSERT_TRUE(createNewPlist(file, QVariantMap{{QStringLiteral("birthdate"), 7}}));
    EXPECT_EQ(readPlist(file).value().value(QStringLiteral("birthdate")), QVariant(qint64{7}));
}

TEST(PropertyListFile, FailuresAreAnswered)
{
    const TempFolder folder;
    const EnvironmentChange home("HOME", QFile::encodeName(folder.path()).constData());
    EXPECT_TRUE(createNewPlist(QStringLiteral("~/x.plist"), QVariantMap{}));
    EXPECT_TRUE(readPlist(QStringLiteral("~/x.plist")).has_value());
    EXPECT_FALSE(createNewPlist(folder.path(QStringLiteral("no folder/x")), QVariantMap{}));
    EXPECT_FALSE(createNewPlist(QString(), QVariantMap{}));
    const LogCapture log;
    EXPECT_FALSE(createNewPlist(folder.path(QStringLiteral("y")), QVariant(std::nan(""))));
    EXPECT_EQ(log.lines().size(), 1);
    EXPECT_FALSE(itemExists(folder.path(QStringLiteral("y"))));
    EXPECT_FALSE(readPlist(folder.path(QStringLiteral("missing"))).has_value());
    EXPECT_FALSE(readPlist(folder.makeFile(QStringLiteral("bad"), "x")).has_value());
    EXPECT_FALSE(readPlist(QString()).has_value());
    ASSERT_TRUE(createNewPlist(folder.path(QStringLiteral("list")), QVariantList{}));
    EXPECT_FALSE(readPlist(folder.path(QStringLiteral("list"))).has_value());
}

TEST(PropertyListFile, IsNeverWrittenThroughALink)
{
    const TempFolder folder;
    const QString precious = folder.makeFile(QStringLiteral("precious"), "p");
    ASSERT_TRUE(QFile::link(precious, folder.path(QStringLiteral("link"))));
    EXPECT_FALSE(createNewPlist(folder.path(QStringLiteral("link")), QVariantMap{}));
    EXPECT_EQ(readBytes(precious), QByteArray("p"));
}

} // namespace
