#pragma once

#include "app/batchlist.h"
#include "app/controls.h"

namespace tavrix
{

// Images of the pause/play/stop control; the action is chosen by the pressed segment's image name.
namespace controlImage
{
inline const QString pause = QStringLiteral("btPause");
inline const QString play = QStringLiteral("btPlay");
inline const QString stop = QStringLiteral("btStop");
} // namespace controlImage

inline constexpr int outputFormatCount = 6;
inline constexpr int colorThemeCount = 4;
// Side segments of encStopBt: the first toggles pause and play, the second stops.
inline constexpr int encStopSegmentPause = 0;
inline constexpr int encStopSegmentStop = 1;

// Everything that the main window shows and lets a person change, by the names that the controller uses.
class WindowModel : public QObject
{
    Q_OBJECT
public:
    explicit WindowModel(QObject* parent = nullptr);

    // Drop area and analysis
    ImageView dragndropImgView{"dragndropImgView"};
    TextField dragndropCaptionStr{"dragndropCaptionStr"};
    TextField dragndropActionStr{"dragndropActionStr"};
    SpinningIndicator analyseWheelProgInd{"analyseWheelProgInd"};
    TextField analyseCaptionStr{"analyseCaptionStr"};
    SegmentedControl analyseStopBt{"analyseStopBt", {controlImage::stop}};
    IntegerField analysisStopInt{"analysisStopInt"};

    // Batch
    BatchList encBatchArrayController;
    Drawer drawer{"drawer"};
    StateButton batchEncGoBt{"batchEncGoBt"};
    StateButton batchEncRemoveBt{"batchEncRemoveBt"};
    StateButton batchEncRemoveAllBt{"batchEncRemoveAllBt"};

    // Running encode
    SegmentedControl encStopBt{"encStopBt", {controlImage::pause, controlImage::stop}};
    ProgressBar encTaskProgress{"encTaskProgress"};
    TextField mainEncProgressCaptionStr{"mainEncProgressCaptionStr"};
    TextField mainEncProgressPercentStr{"mainEncProgressPercentStr"};
    IntegerField mainEncProgressInt{"mainEncProgressInt"};

    // Destination
    TextField mainEncDstPathStr{"mainEncDstPathStr"};
    StateButton mainEncDstSelectBt{"mainEncDstSelectBt"};
    StateButton mainEncDstRevealBt{"mainEncDstRevealBt"};

    // Preferences sheet
    SegmentedControl prefCheckMatrix{"prefCheckMatrix", QStringList(outputFormatCount, QString())};
    TextField prefCheckCaption{"prefCheckCaption"};
    TextField prefDefautDstPathStr{"prefDefautDstPathStr"};
    StateButton prefDefautDstSelectBt{"prefDefautDstSelectBt"};
    StateButton prefDefautDstRevealBt{"prefDefautDstRevealBt"};
    SegmentedControl prefColor;
    ImageView prefColorImgView{"prefColorImgView"};

    // Version and menu items that the controller tells apart by sender
    TextField versionStr{"versionStr"};
    StateButton menuBugreport{"menuBugreport"};
    StateButton menuContact{"menuContact"};
    StateButton menuDebug{"menuDebug"};
    StateButton menuDetailsLog{"menuDetailsLog"};
    StateButton menuResumeLog{"menuResumeLog"};
};

} // namespace tavrix
