// What an event says of a call: docs/events.md lists it.
#pragma once

#include "event_line.h"
#include "table_watch.h"

namespace orlu::probe {

// What was handed in.
void addInputs(EventLine& line, const WatchedCall& call);
// How long it took and what came back.
void addOutputs(EventLine& line, const WatchedCall& call, const WatchedEnd& end);

}  // namespace orlu::probe
