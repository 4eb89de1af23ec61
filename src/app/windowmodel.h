// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Everything that the main window shows and lets a person change, by the names that the controller uses.

#include "app/batchlist.h"
#include "app/controls.h"
#include "encode/outputformats.h"

namespace tavrix
{

// Images of the pause/play/stop control; the action is chosen by the pressed segment's image name.
namespace controlImage
{
inline const QString pause = QStringLiteral("btPause");
inline const QString play = QStringLiteral("btPlay");
inline const QString stop = QStringLiteral("btStop");
} // namespace controlImage

inline constexpr int colorThemeCount = 6;
// What an output format is for, in a line; the key itself for a number out of range.
[[nodiscard]] QString formatCaption(int out);
// Side segments of encStopBt: the first toggles pause and play, the second stops.
inline constexpr int encStopSegmentPause = 0;
inline constexpr int encStopSegmentStop = 1;
// Room that the window makes below for the drawer, in points.
inline constexpr float drawerHeight = 320;

struct DropControls {
    ImageView dragndropImgView{"dragndropImgView"};
    TextField dragndropCaptionStr{"dragndropCaptionStr"};
    TextField dragndropActionStr{"dragndropActionStr"};
    SpinningIndicator analyseWheelProgInd{"analyseWheelProgInd"};
};

struct AnalysisControls {
    TextField analyseCaptionStr{"analyseCaptionStr"};
    SegmentedControl analyseStopBt{"analyseStopBt", {controlImage::stop}};
    IntegerField analysisStopInt{"analysisStopInt"}; // 1 = a stop is asked for
};

// What can be done with rows follows the list: nothing else enables these three buttons.
struct BatchControls {
    BatchControls();

    BatchList encBatchArrayController;
    Drawer drawer{"drawer"};
    StateButton batchEncGoBt{"batchEncGoBt"}; // on while a batch runs
    StateButton previewBt{"previewBt"};
    StateButton batchEncRemoveBt{"batchEncRemoveBt"};
    StateButton batchEncRemoveAllBt{"batchEncRemoveAllBt"};
};

struct EncodeControls {
    SegmentedControl encStopBt{"encStopBt", {controlImage::pause, controlImage::stop}};
    ProgressBar encTaskProgress{"encTaskProgress"};
    TextField mainEncProgressCaptionStr{"mainEncProgressCaptionStr"};
    TextField mainEncProgressPercentStr{"mainEncProgressPercentStr"};
    IntegerField mainEncProgressInt{"mainEncProgressInt"}; // 1 = a stop is asked for
};

struct DestinationControls {
    TextField mainEncDstPathStr{"mainEncDstPathStr"};
    StateButton mainEncDstSelectBt{"mainEncDstSelectBt"};
    StateButton mainEncDstRevealBt{"mainEncDstRevealBt"};
};

struct PreferenceControls {
    PreferenceControls();

    SegmentedControl prefCheckMatrix{"prefCheckMatrix", QStringList(outputFormatCount, QString())};
    TextField prefCheckCaption{"prefCheckCaption"};
    TextField prefDefautDstPathStr{"prefDefautDstPathStr"};
    StateButton prefDefautDstSelectBt{"prefDefautDstSelectBt"};
    StateButton prefDefautDstRevealBt{"prefDefautDstRevealBt"};
    SegmentedControl prefColor;
    ImageView prefColorImgView{"prefColorImgView"};

    // The words and the image of what is selected.
    void showFormatCaption();
    void showColorImage();
};

// The version and the menu items that the controller tells apart by sender.
struct MenuControls {
    TextField versionStr{"versionStr"};
    StateButton menuBugreport{"menuBugreport"};
    StateButton menuContact{"menuContact"};
    StateButton menuDebug{"menuDebug"};
    StateButton menuDetailsLog{"menuDetailsLog"};
    StateButton menuResumeLog{"menuResumeLog"};
};

class WindowModel : public QObject,
                    public DropControls,
                    public AnalysisControls,
                    public BatchControls,
                    public EncodeControls,
                    public DestinationControls,
                    public PreferenceControls,
                    public MenuControls
{
    Q_OBJECT
public:
    explicit WindowModel(QObject* parent = nullptr);
};

} // namespace tavrix
