// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/options.h"

#include "consoletest.h"
#include "encode/outputformats.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

using Mode = ConsoleOptions::Mode;

struct OptionsCase {
    const char* name;
    QStringList words;
    ConsoleOptions expected;
};

ConsoleOptions options(Mode mode, const QStringList& sources = {})
{
    ConsoleOptions made;
    made.mode = mode;
    made.sources = sources;
    return made;
}

ConsoleOptions converting(const QStringList& sources, int format, const QString& output, ExistingPolicy existing,
                          bool json)
{
    ConsoleOptions made = options(Mode::Convert, sources);
    made.format = format;
    made.output = output;
    made.existing = existing;
    made.json = json;
    return made;
}

ConsoleOptions wrong(const char* error)
{
    ConsoleOptions made = options(Mode::Wrong);
    made.error = text(error);
    return made;
}

ConsoleOptions noFormat(const char* given)
{
    return wrong(qPrintable(QStringLiteral("'%1' is no output format: give a number from 0 to %2")
                                .arg(text(given), QString::number(outputFormatCount - 1))));
}

ConsoleOptions talking(Verbosity verbosity, int format, bool dryRun)
{
    ConsoleOptions made = options(Mode::Convert, {text("a")});
    made.verbosity = verbosity;
    made.format = format;
    made.dryRun = dryRun;
    return made;
}

class ConsoleOptionsTable : public ConsoleTest, public testing::WithParamInterface<OptionsCase>
{
};

TEST_P(ConsoleOptionsTable, wordsBecomeOptions)
{
    const ConsoleOptions parsed = parseConsoleOptions(GetParam().words);
    const ConsoleOptions& expected = GetParam().expected;
    ASSERT_EQ(parsed.mode, expected.mode) << parsed.error.toStdString();
    if (expected.mode == Mode::Wrong) {
        EXPECT_TEXT(parsed.error, expected.error);
        return;
    }
    EXPECT_EQ(parsed.format, expected.format);
    EXPECT_TEXT(parsed.output, expected.output);
    EXPECT_EQ(parsed.existing, expected.existing);
    EXPECT_EQ(parsed.json, expected.json);
    EXPECT_EQ(parsed.dryRun, expected.dryRun);
    EXPECT_EQ(parsed.verbosity, expected.verbosity);
    EXPECT_EQ(parsed.part, expected.part);
    EXPECT_TEXTS(parsed.sources, expected.sources);
}

ConsoleOptions ofPart(const ClipPart& part)
{
    ConsoleOptions made = options(Mode::Convert, {text("a")});
    made.part = part;
    return made;
}

const OptionsCase optionsCases[] = {
    {"oneSource", {text("a")}, options(Mode::Convert, {text("a")})},
    {"allOptions",
     {text("--format"), text("5"), text("--output"), text("/d"), text("--existing"), text("replace"), text("--json"),
      text("a"), text("b")},
     converting({text("a"), text("b")}, 5, text("/d"), ExistingPolicy::Replace, true)},
    {"valuesBehindEqualSigns",
     {text("--format=0"), text("--output=a=b"), text("--existing=keep"), text("x")},
     converting({text("x")}, 0, text("a=b"), ExistingPolicy::Keep, false)},
    {"optionsBehindSources",
     {text("a"), text("--existing"), text("ask"), text("b")},
     converting({text("a"), text("b")}, -1, {}, ExistingPolicy::Ask, false)},
    {"twoDashesEndTheOptions",
     {text("--json"), text("--"), text("--json"), text("-i.avi"), text("--")},
     converting({text("--json"), text("-i.avi"), text("--")}, -1, {}, ExistingPolicy::Default, true)},
    {"aLoneDashIsASource", {text("-")}, options(Mode::Convert, {text("-")})},
    {"anEmptyWordIsNotTheCurrentFolder", {text("a"), QStringLiteral("")}, wrong("no file or folder given")},
    {"theLastValueCounts",
     {text("--format=1"), text("--format=2"), text("a")},
     converting({text("a")}, 2, {}, ExistingPolicy::Default, false)},
    {"anOptionIsAValueWhereOneIsDue",
     {text("--output"), text("--json"), text("a")},
     converting({text("a")}, -1, text("--json"), ExistingPolicy::Default, false)},
    {"part", {text("--from"), text("0:10"), text("--to=1:02:03.5"), text("a")}, ofPart({10, 3723.5})},
    {"partToTheEnd", {text("--from=7"), text("a")}, ofPart({7, std::nullopt})},
    {"partFromTheBeginning", {text("--to=7"), text("a")}, ofPart({0, 7})},
    {"partTurnedRound",
     {text("--from=7"), text("--to=7"), text("a")},
     wrong("the part is empty: --to must be later than --from")},
    {"noTime",
     {text("--from=1m"), text("a")},
     wrong("--from: '1m' is no time: give seconds, m:ss or h:mm:ss, with a point or a comma before parts of a second")},
    {"missingTime", {text("a"), text("--to")}, wrong("--to needs a value")},
    {"help", {text("--help")}, options(Mode::Help)},
    {"shortHelp", {text("-h")}, options(Mode::Help)},
    {"version", {text("--version")}, options(Mode::Version)},
    {"nothing", {}, wrong("no file or folder given")},
    {"onlyOptions", {text("--json")}, wrong("no file or folder given")},
    {"unknownOption", {text("--fast"), text("a")}, wrong("unknown option --fast")},
    {"unknownLetter", {text("-qx"), text("a")}, wrong("unknown option -x")},
    {"letters",
     {text("-f"), text("5"), text("-o"), text("/d"), text("a")},
     converting({text("a")}, 5, text("/d"), ExistingPolicy::Default, false)},
    {"lettersWithTheirValues",
     {text("-f0"), text("-o-d=1"), text("a")},
     converting({text("a")}, 0, text("-d=1"), ExistingPolicy::Default, false)},
    {"lettersTogether", {text("-qnf3"), text("a")}, talking(Verbosity::Quiet, 3, true)},
    {"quiet", {text("--quiet"), text("a")}, talking(Verbosity::Quiet, -1, false)},
    {"verbose", {text("-v"), text("a")}, talking(Verbosity::Verbose, -1, false)},
    {"theLastLoudnessCounts", {text("-v"), text("-q"), text("a")}, talking(Verbosity::Quiet, -1, false)},
    {"dryRun", {text("--dry-run"), text("a")}, talking(Verbosity::Normal, -1, true)},
    {"skipping", {text("--existing=skip"), text("a")}, converting({text("a")}, -1, {}, ExistingPolicy::Skip, false)},
    {"missingValueOfALetter", {text("a"), text("-o")}, wrong("-o needs a value")},
    {"wrongValueOfALetter", {text("-f=3"), text("a")}, noFormat("=3")},
    {"aFlagTakesNoValue", {text("--json=1"), text("a")}, wrong("unknown option --json=1")},
    {"formatTooLarge", {text("--format"), text("99"), text("a")}, noFormat("99")},
    {"formatNegative", {text("--format=-1"), text("a")}, noFormat("-1")},
    {"formatNoNumber", {text("--format=mov"), text("a")}, noFormat("mov")},
    {"formatEmpty", {text("--format="), text("a")}, noFormat("")},
    {"formatWithPercentSigns", {text("--format=%@%1"), text("a")}, noFormat("%@%1")},
    {"missingFormat", {text("a"), text("--format")}, wrong("--format needs a value")},
    {"missingOutput", {text("a"), text("--output=")}, wrong("--output needs a value")},
    {"unknownPolicy",
     {text("--existing=never"), text("a")},
     wrong("'never' is no answer for --existing: give replace, keep, skip or ask")},
    {"theFirstMistakeIsTold", {text("--fast"), text("--slow")}, wrong("unknown option --fast")},
};

INSTANTIATE_TEST_SUITE_P(Words, ConsoleOptionsTable, testing::ValuesIn(optionsCases), rowName<OptionsCase>);

using ConsoleUsage = ConsoleTest;

TEST_F(ConsoleUsage, namesEveryOptionAndEveryFormat)
{
    const QString usage = consoleUsage();
    for (const char* option : {"-f, --format", "-o, --output", "--existing", "--from", "--to", "skip", "-n, --dry-run",
                               "-q, --quiet", "-v, --verbose", "--json", "-h, --help", "--version"}) {
        EXPECT_TRUE(usage.contains(text(option))) << option;
    }
    for (int format = 0; format < 6; ++format) {
        EXPECT_TRUE(usage.contains(text("\n  ") + QString::number(format) + text("  "))) << format;
    }
    EXPECT_FALSE(usage.contains(text("prefCaption"))) << "every format has a text";
    EXPECT_FALSE(usage.contains(text("Con_")));
}

TEST_F(ConsoleUsage, isThereInFrench)
{
    const QString english = consoleUsage();
    setLanguage(text("fr"));
    EXPECT_NE(consoleUsage(), english);
    EXPECT_FALSE(consoleUsage().contains(text("Con_")));
}

} // namespace
