// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class QVBoxLayout;

namespace tavrix
{

class appDelegate;
class SegmentedView;

// The preferences: output format of new clips, default destination, colour theme. Closing it in any way keeps them.
class PreferencesSheet : public QDialog
{
    Q_OBJECT
public:
    explicit PreferencesSheet(appDelegate& controller, QWidget* parent);

protected:
    void reject() override;
    void showEvent(QShowEvent* event) override;

private:
    void buildFormat(QVBoxLayout* layout);
    void buildDestination(QVBoxLayout* layout);
    void buildColor(QVBoxLayout* layout);
    void buildEnd(QVBoxLayout* layout);

    appDelegate& controller_;
    SegmentedView* formats_ = nullptr;
};

} // namespace tavrix
