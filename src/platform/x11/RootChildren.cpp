#include "platform/x11/RootChildren.h"

namespace skylet::platform::x11 {

namespace {
// More windows than any desktop has; a list that is longer is cut.
constexpr std::uint32_t maximumWindows = 16384;
} // namespace

PendingRootState::PendingRootState(Connection& connection) {
    const Atoms& atoms = connection.atoms();
    const xcb_window_t root = connection.root();
    stacking_ =
        askProperty(connection, root, atoms.NET_CLIENT_LIST_STACKING, XCB_ATOM_WINDOW, maximumWindows);
    clients_ = askProperty(connection, root, atoms.NET_CLIENT_LIST, XCB_ATOM_WINDOW, maximumWindows);
    wmCheck_ = askProperty(connection, root, atoms.NET_SUPPORTING_WM_CHECK, XCB_ATOM_WINDOW, 1);
    currentDesktop_ = askProperty(connection, root, atoms.NET_CURRENT_DESKTOP, XCB_ATOM_CARDINAL, 1);
    tree_ = connection.ask<xcb_query_tree, xcb_query_tree_reply>(root);
}

PendingRootState::State PendingRootState::read() {
    State state;
    state.stacking = items(stacking_, XCB_ATOM_WINDOW);
    state.clients = items(clients_, XCB_ATOM_WINDOW);
    state.wmCheck = firstItem(wmCheck_, XCB_ATOM_WINDOW).value_or(XCB_WINDOW_NONE);
    state.currentDesktop = firstItem(currentDesktop_, XCB_ATOM_CARDINAL);
    if (const auto* tree = tree_.get()) {
        const xcb_window_t* first = xcb_query_tree_children(tree);
        state.children.assign(first, first + xcb_query_tree_children_length(tree));
    }
    return state;
}

PendingProperty askWmCheck(Connection& connection, xcb_window_t wmCheck) {
    return wmCheck == XCB_WINDOW_NONE
               ? PendingProperty()
               : askProperty(connection, wmCheck, connection.atoms().NET_SUPPORTING_WM_CHECK, XCB_ATOM_WINDOW,
                             1);
}

bool isLiveWm(PendingProperty& pending, xcb_window_t wmCheck) {
    return wmCheck != XCB_WINDOW_NONE && firstItem(pending, XCB_ATOM_WINDOW) == wmCheck;
}

} // namespace skylet::platform::x11
