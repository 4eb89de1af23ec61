// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The machines behind the desk.

#include "app/analysismachine.h"
#include "app/batchmachine.h"
#include "app/batchmemory.h"
#include "app/batchrows.h"
#include "app/destination.h"
#include "app/droparea.h"
#include "app/intake.h"
#include "app/session.h"
#include "app/startup.h"

namespace tavrix
{

// Each knows those above it, and none knows the desk.
struct Machines {
    // Neither is owned; the delegate receives the callbacks of all launchers.
    Machines(Session& session, TaskLauncherDelegate& delegate)
        : launchers(delegate), dropArea(session.model()), destination(session), rows(session),
          batch(session, dropArea, destination, rows, launchers), analysis(session, dropArea, launchers),
          intake(session, dropArea, batch, analysis), startUp(session, dropArea), memory(session)
    {
    }

    LauncherMaker launchers;
    DropArea dropArea;
    Destination destination;
    BatchRows rows;
    BatchMachine batch;
    AnalysisMachine analysis;
    Intake intake;
    StartUp startUp;
    BatchMemory memory;
};

} // namespace tavrix
