// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/window/droppanel.h"

#include "app/appdelegate.h"
#include "gui/widgets/binding.h"
#include "gui/widgets/dragndropview.h"
#include "gui/widgets/images.h"
#include "gui/widgets/segmentedview.h"
#include "gui/widgets/wheelview.h"
#include "gui/widgets/windowtext.h"
#include "gui/window/leftoutbutton.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavrix
{

namespace
{

constexpr int largeImage = 84;
constexpr int smallImage = 26;
constexpr int largeHeight = 236;

// A style sheet looks at properties when a widget is polished.
void setRole(QWidget* widget, const char* role)
{
    widget->setProperty("role", QLatin1String(role));
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
}

} // namespace

DropPanel::DropPanel(appDelegate& controller, QWidget* parent)
    : QWidget(parent), controller_(controller), view_(new dragNDropView(this)),
      layout_(new QBoxLayout(QBoxLayout::TopToBottom, view_)), image_(new QLabel(view_))
{
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(view_);
    view_->setAccessibleName(QStringLiteral("@@Win_acc_drop"));
    WindowModel& model = controller_.model();
    view_->setObjectName(model.dragndropImgView.objectName());
    follow(model.dragndropImgView, view_, [this, &model] { view_->setImageName(model.dragndropImgView.imageName()); });
    connect(view_, &dragNDropView::imageChanged, this, &DropPanel::showImage);
    connect(view_, &dragNDropView::clicked, this, &DropPanel::askWhat);

    layout_->addStretch(1);
    image_->setAttribute(Qt::WA_TransparentForMouseEvents);
    image_->setAlignment(Qt::AlignCenter);
    layout_->addWidget(image_);
    buildWords();
    buildButtons();
    layout_->addStretch(1);
    buildAnalysisLine();
    setCompact(false);
}

void DropPanel::buildWords()
{
    WindowModel& model = controller_.model();
    auto* words = new QWidget(view_);
    auto* grid = new QGridLayout(words);
    grid->setContentsMargins(0, 0, 0, 0);
    caption_ = new QLabel(QStringLiteral("@@Win_dropCaption"), words);
    bindText(caption_, model.dragndropCaptionStr, true);
    // Both texts share one place: the caption while the area takes drops, the action while it does not.
    action_ = new QLabel(QStringLiteral("@@Win_dropAction"), words);
    bindText(action_, model.dragndropActionStr, true);
    grid->addWidget(caption_, 0, 0);
    grid->addWidget(action_, 0, 0);
    words->setAttribute(Qt::WA_TransparentForMouseEvents);
    layout_->addWidget(words);
}

void DropPanel::buildButtons()
{
    auto* line = new QHBoxLayout;
    line->addStretch(1);
    const auto button = [this, line](const char* text, const char* name) {
        auto* made = new QPushButton(QLatin1String(text), view_);
        made->setObjectName(QLatin1String(name));
        made->setCursor(Qt::ArrowCursor);
        line->addWidget(made);
        return made;
    };
    addClips_ = button("@@Win_addClips", "addClipsBt");
    addClips_->setToolTip(QStringLiteral("@@Win_tip_addClips"));
    connect(addClips_, &QPushButton::clicked, this, &DropPanel::chooseFiles);
    addFolder_ = button("@@Win_addFolder", "addFolderBt");
    addFolder_->setToolTip(QStringLiteral("@@Win_tip_addFolder"));
    connect(addFolder_, &QPushButton::clicked, this, &DropPanel::chooseFolder);
    line->addStretch(1);
    layout_->addLayout(line);
    hint_ = new QLabel(QStringLiteral("@@Win_dropHint"), view_);
    hint_->setObjectName(QStringLiteral("dropHintStr"));
    hint_->setProperty("role", QStringLiteral("caption"));
    hint_->setAlignment(Qt::AlignCenter);
    hint_->setAttribute(Qt::WA_TransparentForMouseEvents);
    layout_->addWidget(hint_);
    leftOut_ = new LeftOutButton(controller_, view_);
    layout_->addWidget(leftOut_, 0, Qt::AlignCenter);
}

void DropPanel::buildAnalysisLine()
{
    WindowModel& model = controller_.model();
    auto* line = new QHBoxLayout;
    line->addStretch(1);
    auto* wheel = new WheelView(view_);
    bindWheel(wheel, model.analyseWheelProgInd);
    wheel->setAccessibleName(QStringLiteral("@@Win_acc_wheel"));
    line->addWidget(wheel);
    auto* number = new QLabel(view_);
    bindText(number, model.analyseCaptionStr);
    number->setMinimumWidth(number->fontMetrics().horizontalAdvance(QStringLiteral("0000/0000")));
    number->setAlignment(Qt::AlignCenter);
    follow(model.analyseCaptionStr, number, [number, &model] {
        const QString place = model.analyseCaptionStr.stringValue();
        number->setVisible(!model.analyseCaptionStr.isHidden() && !place.isEmpty());
        number->setAccessibleName(place.isEmpty() ? QString() : windowText("Win_acc_analysisNumber", {place}));
    });
    line->addWidget(number);
    stop_ = new SegmentedView(model.analyseStopBt.segmentCount(), view_);
    bindSegments(stop_, model.analyseStopBt, [this] { controller_.iba_analysisStopBt(); });
    stop_->setAccessibleName(QStringLiteral("@@Win_acc_analysisStop"));
    stop_->setCursor(Qt::ArrowCursor);
    line->addWidget(stop_);
    line->addStretch(1);
    layout_->addLayout(line);
}

QList<QWidget*> DropPanel::tabOrder() const
{
    return {view_, addClips_, addFolder_, leftOut_, stop_->segment(0)};
}

void DropPanel::setCompact(bool compact)
{
    compact_ = compact;
    layout_->setDirection(compact ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    layout_->setStretch(0, compact ? 0 : 1);
    layout_->setContentsMargins(compact ? QMargins(12, 5, 8, 5) : QMargins(16, 12, 16, 12));
    layout_->setSpacing(compact ? 10 : 8);
    for (QLabel* label : {caption_, action_}) {
        label->setAlignment(compact ? Qt::AlignLeft | Qt::AlignVCenter : Qt::Alignment(Qt::AlignCenter));
        label->setWordWrap(!compact);
        setRole(label, compact ? "step" : "title");
    }
    hint_->setVisible(!compact);
    // No width of its own: what stands in it is never narrower than its words.
    view_->setMinimumHeight(compact ? 0 : largeHeight);
    const QSizePolicy::Policy height = compact ? QSizePolicy::Fixed : QSizePolicy::Expanding;
    view_->setSizePolicy(QSizePolicy::Expanding, height);
    setSizePolicy(QSizePolicy::Expanding, height);
    showImage();
    showTexts();
}

void DropPanel::showTexts()
{
    // Before the first localisation the marked text stands there.
    if (!caption_->text().startsWith(QLatin1String("@@"))) {
        caption_->setText(windowText(compact_ ? "Win_dropMore" : "Win_dropCaption"));
    }
}

// Images are light or dark, as the theme is.
void DropPanel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::StyleChange) {
        showImage();
    }
    QWidget::changeEvent(event);
}

void DropPanel::showImage()
{
    image_->setPixmap(imagePixmap(view_->imageName(), compact_ ? smallImage : largeImage, devicePixelRatioF()));
}

void DropPanel::askWhat()
{
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("dropMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(windowText("Win_chooseClips"), this, &DropPanel::chooseFiles);
    menu->addAction(windowText("Win_chooseFolder"), this, &DropPanel::chooseFolder);
    menu->popup(view_->mapToGlobal(view_->rect().center()));
    menu->setActiveAction(menu->actions().constFirst());
}

} // namespace tavrix
