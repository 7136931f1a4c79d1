#include "Tests/Fakes/FakeClock.h"
