#pragma once

#include "Tests/Fakes/FakeMachine.h"

/// Invented machines that look like somebody's: 16 GB, a browser, an editor, containers, and what tools leave behind.
namespace ravik::stage {

/// Nothing on it to free.
void furnishCalm(fakes::FakeMachine& machine);
/// A calm one with one program that its terminal has left.
void furnishLeftover(fakes::FakeMachine& machine);
/// A developer's after a week: six causes, of every verdict, and memory is short.
void furnishBusy(fakes::FakeMachine& machine);
/// More of them than anybody can read, with names as long as they come.
void furnishCrowded(fakes::FakeMachine& machine);
/// So many processes that stand for nothing, a quarter of them with a name of their own.
void furnishProcesses(fakes::FakeMachine& machine, int count);

}  // namespace ravik::stage
