// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/dialogs/preferencessheet.h"

#include "app/appdelegate.h"
#include "gui/widgets/binding.h"
#include "gui/widgets/folderline.h"
#include "gui/widgets/images.h"
#include "gui/widgets/segmentedview.h"
#include "gui/widgets/steplabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavrix
{

PreferencesSheet::PreferencesSheet(appDelegate& controller, QWidget* parent) : QDialog(parent), controller_(controller)
{
    setObjectName(QStringLiteral("preferencesSheet"));
    setWindowTitle(QStringLiteral("@@Win_preferences"));
    setWindowModality(Qt::WindowModal);
    setWindowFlag(Qt::Sheet, true);
    auto* layout = new QVBoxLayout(this);
    // Not the window's own minimum: that would win over the width that the formats' names need.
    layout->addStrut(520);
    layout->setContentsMargins(20, 18, 20, 16);
    layout->setSpacing(7);
    buildFormat(layout);
    layout->addSpacing(10);
    buildDestination(layout);
    layout->addSpacing(10);
    buildColor(layout);
    layout->addSpacing(6);
    buildEnd(layout);
}

void PreferencesSheet::buildFormat(QVBoxLayout* layout)
{
    WindowModel& model = controller_.model();
    layout->addWidget(stepLabel("@@Win_formatOfNew", this));
    formats_ = new SegmentedView(outputFormatCount, this);
    for (int out = 0; out < outputFormatCount; ++out) {
        formats_->setLabel(out, QStringLiteral("@@Win_format%1").arg(out));
        formats_->segment(out)->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }
    formats_->setAccessibleName(QStringLiteral("@@Win_formatOfNew"));
    bindSegments(formats_, model.prefCheckMatrix, [this] { controller_.prefCheckCaptions(); });
    layout->addWidget(formats_);
    auto* caption = new QLabel(this);
    caption->setProperty("role", QStringLiteral("caption"));
    caption->setWordWrap(true);
    caption->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    caption->setMinimumHeight(3 * caption->fontMetrics().lineSpacing() + 2);
    bindText(caption, model.prefCheckCaption);
    layout->addWidget(caption);
}

void PreferencesSheet::buildDestination(QVBoxLayout* layout)
{
    WindowModel& model = controller_.model();
    layout->addWidget(stepLabel("@@Win_defaultDestination", this));
    layout->addWidget(new FolderLine(controller_, model.prefDefautDstPathStr, model.prefDefautDstSelectBt,
                                     model.prefDefautDstRevealBt, "@@Win_defaultDestination", this));
}

void PreferencesSheet::buildColor(QVBoxLayout* layout)
{
    WindowModel& model = controller_.model();
    layout->addWidget(stepLabel("@@Win_color", this));
    auto* line = new QHBoxLayout;
    auto* colors = new SegmentedView(colorThemeCount, this);
    colors->setImageSize({36, 24});
    colors->setAccessibleName(QStringLiteral("@@Win_color"));
    bindSegments(colors, model.prefColor, [this] { controller_.iba_setColor(); });
    line->addWidget(colors);
    line->addStretch(1);
    auto* image = new QLabel(this);
    image->setAccessibleName(QStringLiteral("@@Win_acc_colorImage"));
    bindControl(image, model.prefColorImgView);
    follow(model.prefColorImgView, image, [image, &model] {
        image->setPixmap(imagePixmap(model.prefColorImgView.imageName(), 54, image->devicePixelRatioF()));
    });
    line->addWidget(image);
    layout->addLayout(line);
}

void PreferencesSheet::buildEnd(QVBoxLayout* layout)
{
    auto* line = new QHBoxLayout;
    line->addStretch(1);
    auto* close = new QPushButton(QStringLiteral("@@Win_done"), this);
    close->setObjectName(QStringLiteral("preferencesCloseBt"));
    close->setAccessibleName(QStringLiteral("@@Win_done"));
    close->setProperty("role", QStringLiteral("primary"));
    close->setDefault(true);
    close->setMinimumWidth(96);
    connect(close, &QPushButton::clicked, this, [this] { controller_.iba_menuPrefClose(); });
    line->addWidget(close);
    layout->addLayout(line);
}

// The keyboard starts at the format in force, not at the first one.
void PreferencesSheet::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (QToolButton* chosen = formats_->segment(controller_.model().prefCheckMatrix.selectedSegment())) {
        chosen->setFocus();
    }
}

void PreferencesSheet::reject()
{
    controller_.iba_menuPrefClose();
}

} // namespace tavrix
