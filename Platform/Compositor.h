#pragma once

namespace ravik {

/// Whether what a window leaves transparent shows what is beneath it, at this moment: where nothing composes the
/// screen, it is black. True where that is not known. Each platform has its own. Main thread.
bool isComposited();

}  // namespace ravik
