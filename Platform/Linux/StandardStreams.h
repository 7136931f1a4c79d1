#pragma once

namespace ravik::platform {

/// Before anything else is opened: a standard stream that the caller has closed becomes the null device, so that no
/// file of the program's takes its number and receives what is printed; and a pipe whose reader ends is an error of
/// the next write in place of a signal, which would end the program before it lets go of what it holds.
void secureStandardStreams();

}  // namespace ravik::platform
