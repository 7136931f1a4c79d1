#include "Platform/Linux/Compositor.h"

#include <gtest/gtest.h>

#include "Platform/Linux/XConnection.h"
#include "Tests/Platform/Support/Desktop.h"

namespace ravik::platform {

TEST(Compositor, IsThereAsLongAsItHoldsItsSelection) {
    OwnXServer server;
    ASSERT_FALSE(server.display().empty());
    EXPECT_FALSE(isComposited(server.display()));
    {
        const auto manager = XConnection::open(server.display());
        ASSERT_TRUE(manager);
        const std::string name = "_NET_WM_CM_S0";
        const XReply<xcb_intern_atom_reply_t> selection(xcb_intern_atom_reply(
            manager->get(), xcb_intern_atom(manager->get(), 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr));
        ASSERT_TRUE(selection);
        const xcb_window_t window = xcb_generate_id(manager->get());
        xcb_create_window(manager->get(), 0, window, manager->root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                          XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(manager->get(), window, selection->atom, XCB_CURRENT_TIME);
        xcb_flush(manager->get());
        EXPECT_TRUE(turnUntil([&] { return isComposited(server.display()); }));
    }
    EXPECT_TRUE(turnUntil([&] { return !isComposited(server.display()); }));
}

TEST(Compositor, IsTakenForGrantedWhereThereIsNoDisplay) {
    EXPECT_TRUE(isComposited(""));
    EXPECT_TRUE(isComposited(":4711"));
}

}  // namespace ravik::platform
