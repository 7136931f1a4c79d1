#pragma once

namespace ravik::platform {

/// Gives back what a window has left behind: free blocks of the heap, and the pages of libraries that are as they are
/// on disk, which come back from the page cache one by one when they are used again. Main thread; takes a
/// millisecond or two.
void releaseMemory();

}  // namespace ravik::platform
