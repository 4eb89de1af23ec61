// SPDX-License-Identifier: GPL-3.0-or-later
// The marks of a part below the preview, and what can be done with it.
#pragma once

#include "base/text/cliptime.h"

#include <QWidget>

#include <optional>

class QCheckBox;
class QLabel;
class QPushButton;

namespace tavrix
{

class TrimPanel : public QWidget
{
    Q_OBJECT
public:
    explicit TrimPanel(QWidget* parent = nullptr);

    // Another clip, of that length in seconds. Without a clip nothing can be done.
    void setClip(bool opened, double duration, const std::optional<ClipPart>& part);
    // Whether the clip is a row, whether that can still be changed, and whether it converts its part alone.
    void setRow(bool isRow, bool changeable, bool convertsPart);
    // Each moves the other mark out of the way where the part would be empty.
    void setFrom(double seconds);
    void setTo(double seconds);
    void clear();

    [[nodiscard]] std::optional<double> from() const { return from_; }
    [[nodiscard]] std::optional<double> to() const { return to_; }
    // Nothing without a mark.
    [[nodiscard]] std::optional<ClipPart> part() const;

Q_SIGNALS:
    void fromWished();
    void toWished();
    void marksChanged();
    void convertWished(bool only);
    void saveWished();

private:
    QPushButton* addButton(const char* name, const char* text, const char* tip);
    void refresh();

    std::optional<double> from_;
    std::optional<double> to_;
    double duration_ = 0;
    bool opened_ = false;
    bool changeable_ = false;
    QPushButton* in_ = nullptr;
    QPushButton* out_ = nullptr;
    QPushButton* clear_ = nullptr;
    QPushButton* save_ = nullptr;
    QLabel* words_ = nullptr;
    QCheckBox* convert_ = nullptr;
};

} // namespace tavrix
