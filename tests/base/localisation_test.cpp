// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/bundle.h"
#include "base/dialogue/alerts.h"
#include "base/dialogue/localisation.h"
#include "base/dialogue/textfiles.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "testpaths.h"

#include <QDir>
#include <QRegularExpression>

#include <gtest/gtest.h>
#include <vector>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

QString tx(const char* utf8)
{
    return text(utf8);
}

struct TableRow {
    std::string name;
    const char* text;
    QMap<QString, QString> expected;
};

class StringsTable : public testing::TestWithParam<TableRow>
{
};

TEST_P(StringsTable, IsParsedLineByLine)
{
    EXPECT_EQ(parseStringsTable(tx(GetParam().text)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, StringsTable,
    testing::Values(TableRow{"Nothing", nullptr, {}}, TableRow{"Plain", "\"a\" = \"b\";", {{tx("a"), tx("b")}}},
                    TableRow{"NoBlanks", "\"a\"=\"b\";", {{tx("a"), tx("b")}}},
                    TableRow{
                        "Spread", "  \"a\"\t = \"b\" ;  \r\n\n\"c\" = \"\";", {{tx("a"), tx("b")}, {tx("c"), tx("")}}},
                    TableRow{"Escapes", R"("a\"q" = "l1\nl2 \\ \"x\"";)", {{tx("a\"q"), tx("l1\nl2 \\ \"x\"")}}},
                    TableRow{"EqualsAndSemicolons", "\"a=b\" = \"c;d\";", {{tx("a=b"), tx("c;d")}}},
                    TableRow{"Comments",
                             "/* \"x\" = \"y\"; */\n// \"x\" = \"y\";\n/* long\n\"x\" = \"y\";\n*/ \"a\" = \"b\"; // "
                             "end\n\"c\" = \"/* no "
                             "comment */\"; /* end */",
                             {{tx("a"), tx("b")}, {tx("c"), tx("/* no comment */")}}},
                    TableRow{"Malformed",
                             "\"a\" = b;\n\"c\" = \"d\"\na = \"b\";\n\"e\" \"f\";\n\"g = \"h\";\n\"ok\" = \"1\";",
                             {{tx("ok"), tx("1")}}},
                    TableRow{"LaterEntryCounts", "\"a\" = \"1\";\n\"a\" = \"2\";", {{tx("a"), tx("2")}}},
                    TableRow{"OpenComment", "/* \n\"a\" = \"1\";", {}}),
    rowName<TableRow>);

struct LanguageRow {
    std::string name;
    std::vector<const char*> wanted;
    const char* expected;
};

class LanguageChoice : public testing::TestWithParam<LanguageRow>
{
};

TEST_P(LanguageChoice, TakesTheFirstThatIsThere)
{
    QStringList wanted;
    for (const char* language : GetParam().wanted) {
        wanted.append(tx(language));
    }
    EXPECT_TEXT(languageFor(wanted, {tx("en"), tx("fr"), tx("pt-BR")}), tx(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Languages, LanguageChoice,
    testing::Values(LanguageRow{"None", {}, "en"}, LanguageRow{"Plain", {"fr"}, "fr"},
                    LanguageRow{"Region", {"fr-CA"}, "fr"}, LanguageRow{"Underscore", {"fr_BE"}, "fr"},
                    LanguageRow{"Case", {"FR-ca"}, "fr"}, LanguageRow{"Exact", {"pt_BR"}, "pt-BR"},
                    LanguageRow{"OtherRegion", {"pt-PT"}, "en"}, LanguageRow{"Unknown", {"de-DE"}, "en"},
                    LanguageRow{"Second", {"de-DE", "de", "fr"}, "fr"}, LanguageRow{"C", {"C"}, "en"}),
    rowName<LanguageRow>);

// Small tables of its own.
class Localisation : public testing::Test
{
protected:
    void SetUp() override
    {
        folder.makeFile(tx("en.lproj/Localizable.strings"), "\"a\" = \"english a\";\n\"only\" = \"english only\";\n");
        folder.makeFile(tx("en.lproj/fields.strings"), "\"PFF\" = \"PFF\";\n");
        folder.makeFile(tx("fr.lproj/Localizable.strings"), "\"a\" = \"a fran\xC3\xA7"
                                                            "ais\";\n\"b\" = \"b\";\n");
        folder.makeFile(tx("fr.lproj/Localized.strings"), "\"b\" = \"autre b\";\n");
        setResourcePath(folder.path());
        setLanguage(tx("fr"));
    }
    void TearDown() override
    {
        FVAutoLocalizeSetBundle(QString());
        FVAutoLocalizeSetName(QString());
        setResourcePath(before);
        setLanguage(QString());
    }
    TempFolder folder;
    const QString before = resourcePath();
};

TEST_F(Localisation, LooksInTheLanguageThenInEnglishThenAnswersTheKey)
{
    EXPECT_TEXT(localizedString(tx("a")), tx("a français"));
    EXPECT_TEXT(localizedString(tx("only")), tx("english only"));
    EXPECT_TEXT(localizedString(tx("missing")), tx("missing"));
    EXPECT_TEXT(localizedString(tx("a"), tx("noTable")), tx("a"));
    EXPECT_TEXT(localizedString(tx("PFF"), tx("fields")), tx("PFF"));
    EXPECT_TEXT(localizedString(tx("")), tx(""));
    EXPECT_TEXT(localizedString(QString()), tx(""));
}

TEST_F(Localisation, TheSecondNameOfTheTableHasItsOwnEntriesFirst)
{
    EXPECT_TEXT(localizedString(tx("b"), tx("Localized")), tx("autre b"));
    EXPECT_TEXT(localizedString(tx("b"), QString()), tx("b"));
    EXPECT_TEXT(localizedString(tx("a"), tx("Localized")), tx("a français"));
    EXPECT_TEXT(localizedString(tx("only"), tx("Localized")), tx("english only"));
    const auto text = [](const QString& table) {
        return utilsAlert::LocalisationString_localFichier_variable1_variable2_variable3_variable4_variable5(
            tx("b"), table, QString(), QString(), QString(), QString(), QString());
    };
    EXPECT_TEXT(text(tx("")), tx("autre b"));
    EXPECT_TEXT(text(QString()), tx("b"));
}

TEST_F(Localisation, TheLanguageCanBeChosen)
{
    EXPECT_TEXTS(availableLanguages(), (QStringList{tx("en"), tx("fr")}));
    EXPECT_TEXT(currentLanguage(), tx("fr"));
    setLanguage(tx("en"));
    EXPECT_TEXT(currentLanguage(), tx("en"));
    EXPECT_TEXT(localizedString(tx("a")), tx("english a"));
    setLanguage(tx("xx"));
    const QString system = currentLanguage();
    EXPECT_TRUE(availableLanguages().contains(system));
    setLanguage(tx(""));
    EXPECT_TEXT(currentLanguage(), system);
}

TEST_F(Localisation, OnlyMarkedTextsAreKeys)
{
    EXPECT_TEXT(localizedMarkedText(tx("@@a")), tx("a français"));
    EXPECT_TEXT(localizedMarkedText(tx("a")), tx("a"));
    EXPECT_TEXT(localizedMarkedText(tx("@a")), tx("@a"));
    EXPECT_TEXT(localizedMarkedText(tx(" @@a")), tx(" @@a"));
    EXPECT_TEXT(localizedMarkedText(tx("@@")), tx(""));
    EXPECT_TEXT(localizedMarkedText(tx("@@missing")), tx("missing"));
    EXPECT_TEXT(localizedMarkedText(tx("")), tx(""));
    EXPECT_TEXT(localizedMarkedText(QString()), QString());
}

TEST_F(Localisation, TheTreeLocaliserHasItsOwnFolderAndTable)
{
    const TempFolder other;
    other.makeFile(tx("fr.lproj/Panel.strings"), "\"a\" = \"panneau\";\n");
    FVAutoLocalizeSetBundle(other.path());
    FVAutoLocalizeSetName(tx("Panel"));
    EXPECT_TEXT(localizedMarkedText(tx("@@a")), tx("panneau"));
    EXPECT_TEXT(localizedString(tx("a")), tx("a français"));
    FVAutoLocalizeSetBundle(tx(""));
    EXPECT_TEXT(localizedMarkedText(tx("@@a")), tx("a"));
    FVAutoLocalizeSetName(tx(""));
    EXPECT_TEXT(localizedMarkedText(tx("@@a")), tx("a français"));
}

TEST_F(Localisation, AnUnreadableTableIsLoggedOnceAndEmpty)
{
    const QString table = folder.makeFile(tx("fr.lproj/Broken.strings"), "\"a\" = \"\x81\";\n");
    const LogCapture log;
    EXPECT_TEXT(localizedString(tx("a"), tx("Broken")), tx("a"));
    EXPECT_TEXT(localizedString(tx("a"), tx("Broken")), tx("a"));
    EXPECT_TEXTS(log.lines(), QStringList{tx("strings table       :-( unreadable: ") + table});
}

TEST_F(Localisation, AKeyIsFoundByItsTextInTheLanguage)
{
    EXPECT_TEXT(str2LocalisationTitle(tx("a français"), tx("Localizable")), tx("a"));
}

struct Language {
    std::string name;
};

// The texts that the program ships.
class ShippedTexts : public testing::TestWithParam<Language>
{
protected:
    void SetUp() override
    {
        setResourcePath(QStringLiteral(TAVRIX_SOURCE_DIR) + QStringLiteral("/resources"));
        setLanguage(tx(GetParam().name.c_str()));
    }
    void TearDown() override
    {
        setResourcePath(before);
        setLanguage(QString());
    }
    [[nodiscard]] static QMap<QString, QString> table(const char* language, const char* name)
    {
        return parseStringsTable(
            readContentsTxtUTF8(resourcePath() + tx("/") + tx(language) + tx(".lproj/") + tx(name) + tx(".strings")));
    }
    const QString before = resourcePath();
};

TEST_P(ShippedTexts, HoldEveryKeyUnderBothTableNames)
{
    for (const char* key : {"D_go_dossier_destination1",
                            "D_go_dossier_destination2",
                            "D_go_dossier_destination3",
                            "D_go_dossier_destination4Bis",
                            "D_replace",
                            "D_keep",
                            "D_applyToAll",
                            "D_go_echec_disque4",
                            "D_go_echec_disque5",
                            "D_action_stop",
                            "D_fin_GUI",
                            "D_batch_1",
                            "D_batch_2",
                            "D_batch_3",
                            "D_batch_4",
                            "D_batch_5",
                            "D_Annuler",
                            "D_oui",
                            "D_check_CPU",
                            "D_appAlreadyOpened_1",
                            "D_appAlreadyOpened_2",
                            "D_TXpref_ouvert_2",
                            "D_appAlreadyOpened_3",
                            "D_quit_1",
                            "D_quit_2",
                            "Menu_Quit",
                            "Menu_Debug0",
                            "Menu_Debug1",
                            "Menu_bugreport",
                            "D_bugreport_alert",
                            "D_bugreport_mail",
                            "D_Langue",
                            "prefCaption-1",
                            "prefCaption0",
                            "prefCaption1",
                            "prefCaption2",
                            "prefCaption3",
                            "prefCaption4",
                            "prefCaption5",
                            "selectFileStr"}) {
        const QString shown = table(GetParam().name.c_str(), "Localizable").value(tx(key));
        EXPECT_FALSE(shown.isEmpty()) << key;
        EXPECT_NE(shown, tx(key));
        EXPECT_TEXT(localizedString(tx(key)), shown);
        EXPECT_TEXT(localizedString(tx(key), tx("Localized")), shown);
    }
}

TEST_P(ShippedTexts, AnswerDifferentButtons)
{
    EXPECT_NE(localizedString(tx("D_replace")), localizedString(tx("D_keep")));
    EXPECT_NE(localizedString(tx("D_Annuler")), localizedString(tx("D_oui")));
    EXPECT_NE(localizedString(tx("D_Annuler")), localizedString(tx("Menu_Quit")));
    EXPECT_NE(localizedString(tx("Menu_Debug0")), localizedString(tx("Menu_Debug1")));
}

TEST_P(ShippedTexts, KeepTheInterlacingCodesUntranslated)
{
    for (const char* code : {"PFF", "TFF", "BFF"}) {
        for (const char* name : {"fields", "NonLocalizable"}) {
            EXPECT_TEXT(table(GetParam().name.c_str(), name).value(tx(code)), tx(code));
        }
    }
}

TEST_P(ShippedTexts, MatchTheirPlaces)
{
    EXPECT_EQ(localizedString(tx("D_batch_3")).count(tx("%@")), 1);
    // The mail's address is percent-escaped without these, so they would end the text.
    for (const char* forbidden : {"&", "#"}) {
        EXPECT_FALSE(localizedString(tx("D_bugreport_mail")).contains(tx(forbidden)));
    }
}

TEST_P(ShippedTexts, HaveTheSameKeysInEveryLanguageAndNoBrokenLine)
{
    for (const char* name : {"Localizable", "Localized", "fields", "NonLocalizable"}) {
        EXPECT_TEXTS(table(GetParam().name.c_str(), name).keys(), table("en", name).keys()) << name;
        const QString contents = readContentsTxtUTF8(resourcePath() + tx("/") + tx(GetParam().name.c_str()) +
                                                     tx(".lproj/") + tx(name) + tx(".strings"));
        EXPECT_EQ(contents.count(QRegularExpression(tx("^\""), QRegularExpression::MultilineOption)),
                  table(GetParam().name.c_str(), name).size())
            << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, ShippedTexts, testing::Values(Language{"en"}, Language{"fr"}), rowName<Language>);

TEST(ShippedInformation, NamesTheProgram)
{
    const QString before = resourcePath();
    setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
    EXPECT_TEXT(bundleName(), tx("Tavrix"));
    EXPECT_TEXT(bundleIdentifier(), tx("org.tavrix.Tavrix"));
    EXPECT_TEXT(bundleVersion(), tx("1.0"));
    for (const char* extension : {"mts", "m2ts", "mov", "avi", "eyetv", "mpg"}) {
        EXPECT_TRUE(documentTypeExtensions().contains(tx(extension))) << extension;
    }
    for (const char* name : {"TVXWebSite", "TVXMailDomain", "TVXMailBugreport", "TVXMailContact"}) {
        EXPECT_FALSE(infoValue(tx(name)).toString().isEmpty()) << name;
    }
    setResourcePath(before);
}

} // namespace
