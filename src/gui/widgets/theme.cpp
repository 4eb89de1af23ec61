// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/theme.h"

#include "app/windowmodel.h"
#include "gui/widgets/images.h"

#include <QApplication>
#include <QStyleFactory>

#include <array>
#include <cmath>
#include <optional>

namespace tavrix
{

namespace
{

int themeInForce = 0;
// Nothing as long as the desktop has not said it.
std::optional<bool> desktopDark;
constexpr int middleLightness = 128;
// Before the first theme the palette is the desktop's own.
bool wasDarkAtStart = false;

bool isDesktopDark()
{
    return desktopDark.value_or(wasDarkAtStart);
}

QColor rgb(unsigned int value)
{
    return QColor::fromRgb(value);
}

double linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

const std::array<Theme, colorThemeCount - 1>& themes()
{
    static const std::array<Theme, colorThemeCount - 1> all{{
        {rgb(0x2A2F37), rgb(0x1A1D22), rgb(0x1F2329), rgb(0x15181C), rgb(0x848D9A), rgb(0x4A525E), rgb(0x3C434D),
         rgb(0xF2F3F5), rgb(0xB9C0CB), rgb(0x5AA9FF), rgb(0x0E1116), rgb(0xFF9A92)},
        {rgb(0x322C25), rgb(0x1D1915), rgb(0x26211B), rgb(0x181511), rgb(0x968A7B), rgb(0x5B5144), rgb(0x463E34),
         rgb(0xF5F2EE), rgb(0xC9C0B4), rgb(0xFFB454), rgb(0x17120A), rgb(0xFF9A92)},
        {rgb(0x26302A), rgb(0x161C17), rgb(0x1D2520), rgb(0x121713), rgb(0x7E9084), rgb(0x46544A), rgb(0x38453C),
         rgb(0xF0F4F1), rgb(0xB7C4BA), rgb(0x6FCF7C), rgb(0x0B140D), rgb(0xFF9A92)},
        {rgb(0x31283A), rgb(0x1C1720), rgb(0x251F2B), rgb(0x17131B), rgb(0x9586A0), rgb(0x594A62), rgb(0x463A50),
         rgb(0xF4F1F6), rgb(0xC6BCCD), rgb(0xF58AC0), rgb(0x190C13), rgb(0xFF9A92)},
        {rgb(0xF3F4F6), rgb(0xE7E9ED), rgb(0xFBFBFC), rgb(0xFFFFFF), rgb(0x6F7681), rgb(0xD3D7DE), rgb(0xFDFDFE),
         rgb(0x16181C), rgb(0x4A505A), rgb(0x0B5CAD), rgb(0xFFFFFF), rgb(0xA3180F), true},
    }};
    return all;
}

// One %name per colour, so that the style text reads like a style sheet.
QString filled(QString sheet, const Theme& theme)
{
    const std::array<std::pair<const char*, QColor>, 12> colors{{{"%windowTop", theme.windowTop},
                                                                 {"%windowBottom", theme.windowBottom},
                                                                 {"%panel", theme.panel},
                                                                 {"%field", theme.field},
                                                                 {"%border", theme.border},
                                                                 {"%line", theme.line},
                                                                 {"%control", theme.control},
                                                                 {"%text", theme.text},
                                                                 {"%secondary", theme.secondaryText},
                                                                 {"%accentText", theme.accentText},
                                                                 {"%accent", theme.accent},
                                                                 {"%warning", theme.warning}}};
    for (const auto& [name, color] : colors) {
        sheet.replace(QLatin1String(name), color.name());
    }
    return sheet.replace(QLatin1String("%chevron"), imagePath(QStringLiteral("chevron")));
}

const char* const sheetTemplate = R"(
QMainWindow, QDialog, QWidget#helpWindow, QWidget#previewWindow {
  background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 %windowTop, stop:1 %windowBottom); color: %text; }
QLabel, QCheckBox { color: %text; background: transparent; }
QLabel[role="caption"] { color: %secondary; }
QLabel[role="step"] { color: %secondary; font-weight: 600; }
QLabel[role="title"] { font-size: 13pt; font-weight: 600; }
QLabel[role="warning"] { color: %warning; }
QLineEdit, QPlainTextEdit, QComboBox { background: %field; color: %text; border: 1px solid %border; border-radius: 4px;
  padding: 4px 6px; min-height: 18px; selection-background-color: %accent; selection-color: %accentText; }
QLineEdit:focus, QComboBox:focus, QPlainTextEdit:focus { border: 2px solid %accent; padding: 3px 5px; }
QLineEdit:disabled, QComboBox:disabled { color: %secondary; }
QComboBox::drop-down { border: none; width: 22px; }
QComboBox::down-arrow { image: url("%chevron"); width: 12px; height: 12px; }
QComboBox QAbstractItemView { background: %field; color: %text; selection-background-color: %accent;
  selection-color: %accentText; }
QPushButton, QToolButton { outline: none;
  background: %control; color: %text; border: 1px solid %border; border-radius: 5px; padding: 4px 12px; min-height: 20px; }
QToolButton { padding: 4px 8px; }
QPushButton:hover, QToolButton:hover { border-color: %accent; }
QPushButton:pressed, QToolButton:pressed, QToolButton:checked { background: %field; border-color: %accent; }
QToolButton:checked { background: %accent; color: %accentText; border-color: %accent; }
QPushButton:focus, QToolButton:focus { border: 2px solid %accent; padding: 3px 11px; }
QToolButton:focus { padding: 3px 7px; }
QToolButton:checked:focus { border: 2px solid %text; }
QPushButton:checked { background: %accent; color: %accentText; border-color: %accent; }
QPushButton:disabled, QToolButton:disabled { color: %secondary; background: transparent; border-color: %line; }
QPushButton[role="primary"]:enabled { background: %accent; color: %accentText; border-color: %accent;
  font-weight: 600; }
QPushButton[role="primary"]:enabled:hover { border-color: %text; }
QPushButton[role="primary"]:enabled:focus { border: 2px solid %text; }
QPushButton[role="link"] { background: transparent; border: 1px solid transparent; color: %accent; padding: 2px 4px;
  text-align: left; min-height: 16px; }
QPushButton[role="link"]:focus { border: 1px solid %accent; padding: 2px 4px; }
QPushButton[role="link"]:hover { text-decoration: underline; }
QProgressBar { background: %field; border: 1px solid %border; border-radius: 5px; min-height: 10px; max-height: 10px; }
QProgressBar::chunk { background: %accent; border-radius: 4px; }
QListView, QListWidget { background: %panel; color: %text; border: 1px solid %border; border-radius: 6px; outline: 0; }
QListView:focus, QListWidget:focus { border: 2px solid %accent; }
QListWidget::item { padding: 4px; }
QListWidget::item:selected { background: %line; color: %text; }
QMenuBar { background: %windowTop; color: %text; }
QMenuBar::item { padding: 4px 9px; background: transparent; }
QMenuBar::item:selected { background: %accent; color: %accentText; }
QMenu { background: %panel; color: %text; border: 1px solid %border; padding: 4px; }
QMenu::item { padding: 5px 26px 5px 22px; border-radius: 3px; }
QMenu::item:selected { background: %accent; color: %accentText; }
QMenu::item:disabled { color: %secondary; background: transparent; }
QMenu::separator { height: 1px; background: %line; margin: 4px 6px; }
QFrame#barLine { background: %line; border: none; max-height: 1px; }
QCheckBox { spacing: 7px; padding: 2px; }
QCheckBox::indicator { width: 15px; height: 15px; border: 1px solid %border; border-radius: 3px; background: %field; }
QCheckBox::indicator:checked { background: %accent; border: 4px solid %field; outline: 1px solid %accent; }
QCheckBox:focus { border: 1px solid %accent; border-radius: 3px; padding: 1px; }
QScrollBar:vertical { background: transparent; width: 11px; margin: 2px; }
QScrollBar::handle:vertical { background: %border; border-radius: 3px; min-height: 28px; }
QScrollBar::add-line, QScrollBar::sub-line { height: 0; width: 0; }
QSlider::groove:horizontal { height: 4px; background: %field; border-radius: 2px; }
QSlider::sub-page:horizontal { background: %accent; border-radius: 2px; }
QSlider::handle:horizontal { width: 14px; height: 14px; margin: -6px 0; border-radius: 7px; background: %text; }
QSlider::handle:horizontal:focus { border: 2px solid %accent; width: 12px; height: 12px; }
QToolTip { background: %panel; color: %text; border: 1px solid %border; padding: 4px; }
)";

} // namespace

const Theme& themeAt(int index)
{
    if (index == desktopTheme) {
        return themeAt(isDesktopDark() ? 0 : lightTheme);
    }
    return themes().at(index >= 0 && index < desktopTheme ? static_cast<std::size_t>(index) : 0);
}

int themeIndexOfImage(const QString& imageName)
{
    for (int i = 0; i < colorThemeCount; ++i) {
        if (imageName == QStringLiteral("color%1").arg(i)) {
            return i;
        }
    }
    return 0;
}

QPalette themePalette(const Theme& theme)
{
    QPalette palette(theme.windowTop, theme.windowBottom);
    palette.setColor(QPalette::WindowText, theme.text);
    palette.setColor(QPalette::Base, theme.field);
    palette.setColor(QPalette::AlternateBase, theme.panel);
    palette.setColor(QPalette::Text, theme.text);
    palette.setColor(QPalette::ButtonText, theme.text);
    palette.setColor(QPalette::PlaceholderText, theme.secondaryText);
    palette.setColor(QPalette::ToolTipBase, theme.panel);
    palette.setColor(QPalette::ToolTipText, theme.text);
    palette.setColor(QPalette::Highlight, theme.accent);
    palette.setColor(QPalette::HighlightedText, theme.accentText);
    palette.setColor(QPalette::Link, theme.accent);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, theme.secondaryText);
    }
    return palette;
}

QString themeStyleSheet(const Theme& theme)
{
    return filled(QString::fromLatin1(sheetTemplate), theme);
}

double contrastRatio(const QColor& a, const QColor& b)
{
    const double lighter = std::max(luminance(a), luminance(b));
    const double darker = std::min(luminance(a), luminance(b));
    return (lighter + 0.05) / (darker + 0.05);
}

void applyTheme(int index)
{
    themeInForce = index >= 0 && index < colorThemeCount ? index : 0;
    if (qApp->styleSheet().isEmpty()) {
        wasDarkAtStart = QApplication::palette().color(QPalette::Window).lightness() < middleLightness;
        // The sheet draws over one known style, whatever the desktop's own is.
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    }
    const QString sheet = themeStyleSheet(currentTheme());
    if (qApp->styleSheet() != sheet) {
        QApplication::setPalette(themePalette(currentTheme()));
        qApp->setStyleSheet(sheet);
    }
}

const Theme& currentTheme()
{
    return themeAt(themeInForce);
}

void setDesktopDark(bool dark)
{
    desktopDark = dark;
    if (themeInForce == desktopTheme) {
        applyTheme(desktopTheme);
    }
}

} // namespace tavrix
