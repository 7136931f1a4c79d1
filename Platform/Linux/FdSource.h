#pragma once

#include <functional>

struct _GSource;

namespace ravik::platform {

/// Calls back on GLib's default main context when a descriptor has something to read. The source goes with the
/// object; the descriptor stays its owner's.
class FdSource {
public:
    /// `pending` tells whether something waits that was read from the descriptor already. `ready` is called then
    /// and on every event; false ends the calls.
    FdSource(int fd, std::function<bool()> pending, std::function<bool()> ready);
    ~FdSource();
    FdSource(const FdSource&) = delete;
    FdSource& operator=(const FdSource&) = delete;

private:
    _GSource* m_source;
};

}  // namespace ravik::platform
