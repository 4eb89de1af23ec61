// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>
#include <QTranslator>

class QVBoxLayout;

namespace tavrix
{

class appDelegate;
class BatchDrawer;
class BatchList;
class DropPanel;
class EncodePanel;
class PreferencesSheet;

// The main window on the controller's model: the drop area, or a line of it above the list; below the bar with the
// destination, the format, the start and the running encode.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(appDelegate& controller);

    // Makes the controller the delegate of the drop area.
    void takeDrops();
    // Replaces the marked texts by those of the language in force.
    void localise();
    // Choosers whose answer is taken in like a drop.
    void chooseFiles();
    void chooseFolder();
    // What has just happened, in the last line.
    void showNotice(const QString& text);
    void showAbout();
    // All that is known of the selected clip, in a window of its own; nothing without a selection.
    void showInformation();
    // The report of a problem; its mail button sends it on the way of the controller.
    void showReport();
    // Grows toward a side by delta + 50 and stays on the screen; a maximised window keeps its size.
    void growToward(const QString& side, float delta);
    [[nodiscard]] PreferencesSheet& preferences() const { return *preferences_; }
    [[nodiscard]] BatchDrawer& batchDrawer() const { return *drawer_; }
    [[nodiscard]] BatchList& rows() const;

protected:
    // What is dropped beside the drop area was meant for it: people do not aim.
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void build();
    void showDrawer(bool open);
    void watchDrawer();
    void watchTheme();
    void setOrder();
    void wrapTips();
    void openPaths(const QStringList& paths);

    appDelegate& controller_;
    QVBoxLayout* layout_ = nullptr;
    DropPanel* drop_ = nullptr;
    EncodePanel* encode_ = nullptr;
    BatchDrawer* drawer_ = nullptr;
    PreferencesSheet* preferences_ = nullptr;
    bool drawerWasOpen_ = false;
    int heightBefore_ = 0; // of the window before it grew for the drawer
    int heightOpen_ = 0;   // after that
    QTranslator toolkitTexts_;
};

} // namespace tavrix
