// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "gui/dialogs/helpslides.h"
#include "gui/widgets/images.h"
#include "gui/widgets/segmentedview.h"
#include "gui/widgets/styledtext.h"
#include "gui/widgets/theme.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "testpaths.h"

#include <QComboBox>
#include <QLabel>
#include <QSvgRenderer>

namespace tavrix::test
{
namespace
{

class Look : public testing::Test
{
protected:
    void SetUp() override { setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES)); }
    void TearDown() override { setLanguage(QString()); }
};

struct Coloured {
    const char* name;
    const char* colour;
    QColor expected;
};

class ColourNames : public testing::TestWithParam<Coloured>
{
};

} // namespace

TEST_P(ColourNames, AreReadInEitherCase)
{
    const StyledText styled = colorizedStr(QStringLiteral("x"), text(GetParam().colour));
    EXPECT_EQ(styled.format.foreground().color(), GetParam().expected);
    EXPECT_EQ(styled.format.foreground().color().alpha(), 255);
    EXPECT_EQ(styled.elideMode, Qt::ElideRight);
    EXPECT_EQ(styled.wrapMode, QTextOption::NoWrap);
}

INSTANTIATE_TEST_SUITE_P(
    StyledTexts, ColourNames,
    testing::Values(Coloured{"red", "Red", QColor(255, 0, 0)}, Coloured{"white", "WHITE", QColor(255, 255, 255)},
                    Coloured{"gray", "gray", QColor(128, 128, 128)}, Coloured{"black", "black", QColor(0, 0, 0)},
                    Coloured{"blueIsBlack", "blue", QColor(0, 0, 0)}, Coloured{"emptyIsBlack", "", QColor(0, 0, 0)},
                    Coloured{"nothingIsBlack", nullptr, QColor(0, 0, 0)}),
    rowName<Coloured>);

TEST_F(Look, FontSpecificationsMayBeShort)
{
    const auto check = [](const QStringList& specification, const char* family, double size, const QColor& colour) {
        const StyledText styled = monospaceFontColorStr(QStringLiteral("log"), specification);
        EXPECT_TEXTS(styled.format.fontFamilies().toStringList(), QStringList({QString::fromLatin1(family)}));
        EXPECT_EQ(styled.format.fontPointSize(), size);
        EXPECT_EQ(styled.format.foreground().color(), colour);
    };
    check({}, "Lucida Grande", 13, Qt::black);
    check({QStringLiteral("Monaco")}, "Monaco", 13, Qt::black);
    check({QStringLiteral("Monaco"), QStringLiteral("9.7")}, "Monaco", 9, Qt::black);
    check({QStringLiteral("Monaco"), QStringLiteral("9"), QStringLiteral("red")}, "Monaco", 9, QColor(255, 0, 0));
    EXPECT_TEXT(monospaceFontColorStr(QString(), {}).text, QStringLiteral(""));
}

TEST_F(Look, MenuImageReplacesTheSelectedTitle)
{
    QComboBox button;
    button.addItems({QStringLiteral("one"), QStringLiteral("two")});
    button.setCurrentIndex(1);
    menuImage(QStringLiteral("puceSuccess"), &button);
    EXPECT_TRUE(button.itemText(1).isEmpty());
    EXPECT_FALSE(button.itemIcon(1).isNull());
    EXPECT_EQ(button.itemText(0), QStringLiteral("one"));
    EXPECT_TRUE(button.itemIcon(0).isNull());
}

TEST_F(Look, EveryNamedImageIsThereAndSharpAtAnyScale)
{
    for (const char* name :
         {"dnd",     "dndOff", "puce",    "puceCurrent", "puceSuccess",   "puceFailure", "puceIncomplete",
          "btPause", "btPlay", "chevron", "btStop",      "color0",        "color1",      "color2",
          "color3",  "color4", "color5",  "pucePaused",  "alertCritical", "tavrix"}) {
        const QString image = QString::fromLatin1(name);
        ASSERT_FALSE(imagePath(image).isNull()) << name;
        EXPECT_TRUE(QSvgRenderer(imagePath(image)).isValid()) << name;
        for (const double scale : {1.0, 2.0, 3.0}) {
            const QPixmap pixmap = imagePixmap(image, 32, scale);
            EXPECT_EQ(qMax(pixmap.width(), pixmap.height()), qRound(32 * scale)) << name;
            EXPECT_EQ(pixmap.devicePixelRatio(), scale) << name;
        }
    }
    // An icon shows the image, greyed where its button is disabled, without any plugin of Qt's.
    const QIcon icon = imageNamed(QStringLiteral("puceSuccess"));
    const QImage shown = icon.pixmap(QSize(32, 32), 1.0).toImage();
    const QImage disabled = icon.pixmap(QSize(32, 32), 1.0, QIcon::Disabled).toImage();
    EXPECT_EQ(shown.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(shown.pixelColor(16, 16).alpha(), 255);
    EXPECT_NE(shown, disabled);
    EXPECT_TRUE(imageNamed(QStringLiteral("no such image")).isNull());
    EXPECT_TRUE(imageNamed(QString()).isNull());
    EXPECT_TRUE(imagePixmap(QStringLiteral("no such image"), 32, 1).isNull());
}

TEST_F(Look, TextIsReadableInEveryTheme)
{
    constexpr double readable = 4.5;
    constexpr double visible = 3;
    for (int i = 0; i <= lightTheme; ++i) {
        const Theme& theme = themeAt(i);
        for (const QColor& back : {theme.windowTop, theme.windowBottom, theme.panel, theme.field}) {
            EXPECT_GE(contrastRatio(theme.border, back), visible)
                << "theme " << i << ": border on " << qPrintable(back.name());
            for (const QColor& front : {theme.text, theme.secondaryText, theme.accent, theme.warning}) {
                EXPECT_GE(contrastRatio(front, back), readable)
                    << "theme " << i << ": " << qPrintable(front.name()) << " on " << qPrintable(back.name());
            }
        }
        EXPECT_GE(contrastRatio(theme.accentText, theme.accent), readable) << i;
        EXPECT_GE(contrastRatio(theme.text, theme.line), readable) << i;
        EXPECT_GE(contrastRatio(theme.text, theme.control), readable) << i;
    }
    EXPECT_NEAR(contrastRatio(Qt::black, Qt::white), 21, 0.01);
}

TEST_F(Look, ThemesAreChosenByTheirImage)
{
    EXPECT_EQ(themeIndexOfImage(QStringLiteral("color2")), 2);
    EXPECT_EQ(themeIndexOfImage(QStringLiteral("color9")), 0);
    EXPECT_EQ(themeIndexOfImage(QString()), 0);
    EXPECT_EQ(&themeAt(-1), &themeAt(0));
    EXPECT_EQ(&themeAt(6), &themeAt(0));
    EXPECT_FALSE(themeStyleSheet(themeAt(1)).contains(QLatin1Char('%')));
}

TEST_F(Look, OneThemeFollowsTheDesktop)
{
    setDesktopDark(true);
    EXPECT_EQ(&themeAt(desktopTheme), &themeAt(0));
    applyTheme(desktopTheme);
    EXPECT_FALSE(imagePath(QStringLiteral("btStop")).contains(QStringLiteral("Light")));
    setDesktopDark(false);
    EXPECT_EQ(&currentTheme(), &themeAt(lightTheme));
    EXPECT_TRUE(imagePath(QStringLiteral("btStop")).contains(QStringLiteral("Light")));
    EXPECT_FALSE(imagePath(QStringLiteral("tavrix")).isNull());
    applyTheme(0);
}

TEST_F(Look, HelpSlidesAreDrawableInEveryLanguage)
{
    ASSERT_EQ(helpSlideCount(), 5);
    for (const QString& language : availableLanguages()) {
        setLanguage(language);
        for (int i = 1; i <= helpSlideCount(); ++i) {
            const QByteArray slide = helpSlide(i);
            EXPECT_TRUE(QSvgRenderer(slide).isValid()) << i;
            EXPECT_FALSE(slide.contains("@@"));
            EXPECT_FALSE(slide.contains("Win_")) << "a text is missing";
        }
    }
    EXPECT_TRUE(helpSlide(6).isEmpty());
    EXPECT_TRUE(helpSlide(0).isEmpty());
    EXPECT_EQ(localisedSlide(QStringLiteral("<text>@@a&lt;b</text>")), QByteArray("<text>a&lt;b</text>"));
}

TEST_F(Look, TheHelpMovieOfTheBuildCanBeFound)
{
    for (const char* language : {"en", "fr", "de"}) {
        EXPECT_FALSE(
            pathForResource(QStringLiteral("help/help-") + QLatin1String(language), QStringLiteral("webm")).isNull())
            << language;
    }
}

} // namespace tavrix::test
