// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the list holds and has not converted yet, kept in the preferences store for a run that never comes to its end: a
// crash, a kill, a power cut, the end of the desktop session.

#include <QHash>
#include <QObject>
#include <QStringList>
#include <QTimer>

namespace tavrix
{

class Session;

class BatchMemory : public QObject
{
    Q_OBJECT
public:
    // The session outlives this. Nothing is remembered where the face asks no questions at the start.
    explicit BatchMemory(Session& session);

    // What the run before has left: sources in the order of the list. To be called before this run has rows.
    void recall();
    [[nodiscard]] const QStringList& recalled() const { return recalled_; }
    // The recalled sources come back as rows: each gets the format it had as soon as it is a row.
    void bringBack();
    // The recalled sources are not wanted any more.
    void dropRecalled();
    // The user has ended the program: the next run begins with an empty list.
    void forget();
    // What has changed since is written at once; later changes are not looked at.
    void seal();

private:
    void noteChange();
    void write();
    void restoreFormat(int first, int last);

    Session& session_;
    QTimer timer_;
    QStringList recalled_;
    QHash<QString, int> formats_;   // of what was recalled, by source
    QHash<QString, QString> parts_; // likewise, where only a part was to be converted
    QString destination_;
    bool changed_ = false; // since it was written
    bool sealed_ = false;  // nothing more is written
};

} // namespace tavrix
