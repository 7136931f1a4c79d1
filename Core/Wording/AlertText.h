#pragma once

#include "Core/Watch/Snapshot.h"
#include "Platform/Platform.h"

namespace ravik {

/// The notification for a tick with something due: the words of its first finding, else of the limits passed.
Notification alertText(const Snapshot& snapshot);

}  // namespace ravik
