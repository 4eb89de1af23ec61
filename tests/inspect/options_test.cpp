// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspecttool/options.h"

#include "inspecttest.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

using Mode = InspectOptions::Mode;

InspectOptions parsed(const char* words)
{
    return parseInspectOptions(QString::fromUtf8(words).split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

class InspectWords : public InspectTest
{
};

TEST_F(InspectWords, AskForADescription)
{
    const InspectOptions options = parsed("a.mov --json b.mts --thorough");
    EXPECT_EQ(options.mode, Mode::Describe);
    EXPECT_TRUE(options.json);
    EXPECT_TRUE(options.thorough);
    EXPECT_EQ(options.files, (QStringList{QStringLiteral("a.mov"), QStringLiteral("b.mts")}));
    EXPECT_FALSE(parsed("a.mov").json);
}

TEST_F(InspectWords, AskForTheSystem)
{
    EXPECT_EQ(parsed("--system").mode, Mode::System);
    EXPECT_FALSE(parsed("--system").fullPaths);
    EXPECT_TRUE(parsed("--full-paths --system").fullPaths);
    EXPECT_EQ(parsed("--system a.mov").mode, Mode::Wrong);
    EXPECT_EQ(parsed("--full-paths a.mov").mode, Mode::Wrong);
}

TEST_F(InspectWords, AskForAnExport)
{
    for (const char* words :
         {"--export wav a.mov -o b.wav", "--export=wav --output=b.wav a.mov", "a.mov --output b.wav --export wav"}) {
        const InspectOptions options = parsed(words);
        EXPECT_EQ(options.mode, Mode::Export) << words;
        EXPECT_EQ(options.files, QStringList{QStringLiteral("a.mov")}) << words;
        EXPECT_EQ(options.output, QStringLiteral("b.wav")) << words;
    }
    EXPECT_TRUE(parsed("--export wav a.mov").output.isNull());
}

TEST_F(InspectWords, AskForAPart)
{
    const InspectOptions options =
        parsed("--export mov --from 0:10 --to=42.5 --size 640x360 --replace --progress a.mts");
    EXPECT_EQ(options.mode, Mode::Export);
    EXPECT_EQ(options.form, PartForm::Movie);
    EXPECT_EQ(options.part, (ClipPart{10, 42.5}));
    EXPECT_EQ(options.size, QSize(640, 360));
    EXPECT_TRUE(options.replaces);
    EXPECT_TRUE(options.forPrograms);
    EXPECT_EQ(parsed("--export mov-fast a.mts").form, PartForm::MovieHeaderFirst);
    EXPECT_FALSE(parsed("--export mov a.mts").part);
    EXPECT_EQ(parsed("--export wav --to 3 a.mts").part, (ClipPart{0, 3}));
    for (const char* words :
         {"--from 1 a.mts", "--to 1 a.mts", "--size 2x2 a.mts", "--replace a.mts", "--export mov --from 1;5 a.mts",
          "--export mov --from 5 --to 5 a.mts", "--export mov --size 640 a.mts", "--export mov --size 0x9 a.mts",
          "--export mov --size 9999x9 a.mts", "--export wav --size 64x36 a.mts", "--export mp4 a.mts"}) {
        EXPECT_EQ(parsed(words).mode, Mode::Wrong) << words;
    }
}

TEST_F(InspectWords, AfterTwoDashesAreFiles)
{
    EXPECT_EQ(parsed("-- --json -o").files, (QStringList{QStringLiteral("--json"), QStringLiteral("-o")}));
}

TEST_F(InspectWords, AskForHelpAndVersion)
{
    EXPECT_EQ(parsed("--help").mode, Mode::Help);
    EXPECT_EQ(parsed("-h a.mov").mode, Mode::Help);
    EXPECT_EQ(parsed("--version").mode, Mode::Version);
}

struct WrongRow {
    const char* name;
    const char* words;
    const char* error;
};

class WrongInspectWords : public InspectTest, public testing::WithParamInterface<WrongRow>
{
};

TEST_P(WrongInspectWords, AreToldByTheFirstMistake)
{
    const InspectOptions options = parsed(GetParam().words);
    EXPECT_EQ(options.mode, Mode::Wrong);
    EXPECT_EQ(options.error, text(GetParam().error));
}

INSTANTIATE_TEST_SUITE_P(Rows, WrongInspectWords,
                         testing::Values(WrongRow{"nothing", "", "no file given"},
                                         WrongRow{"noFile", "--json", "no file given"},
                                         WrongRow{"unknown", "--jsn a.mov", "unknown option --jsn"},
                                         WrongRow{"unknownWithHelp", "--jsn --help", "unknown option --jsn"},
                                         WrongRow{"unknownShort", "-x a.mov", "unknown option -x"},
                                         WrongRow{"valueMissing", "a.mov --export", "--export needs a value"},
                                         WrongRow{"valueEmpty", "a.mov --export=", "--export needs a value"},
                                         WrongRow{"flagWithValue", "--json=yes a.mov", "unknown option --json=yes"},
                                         WrongRow{"otherExport", "--export mp3 a.mov",
                                                  "'mp3' cannot be exported: give wav, mov or mov-fast"},
                                         WrongRow{"twoExports", "--export wav a.mov b.mov", "--export takes one file"},
                                         WrongRow{"outputAlone", "a.mov -o b.wav", "--output belongs to --export"}),
                         rowName<WrongRow>);

TEST_F(InspectWords, OfNothingAreNoFolder)
{
    EXPECT_EQ(parseInspectOptions({QStringLiteral("")}).error, QStringLiteral("no file given"));
}

} // namespace
