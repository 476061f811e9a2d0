// The atoms that the adapter uses, interned in one batch at connection.
#pragma once

#include <xcb/xcb.h>

namespace skylet::platform::x11 {

// Member name, atom name. Names come from ICCCM, EWMH and the protocols named beside them.
#define SKYLET_X11_ATOMS(X)                                                                                  \
    X(UTF8_STRING, "UTF8_STRING")                                                                            \
    X(WM_STATE, "WM_STATE")                                                                                  \
    X(WM_PROTOCOLS, "WM_PROTOCOLS")                                                                          \
    X(NET_ACTIVE_WINDOW, "_NET_ACTIVE_WINDOW")                                                               \
    X(NET_CLIENT_LIST, "_NET_CLIENT_LIST")                                                                   \
    X(NET_CLIENT_LIST_STACKING, "_NET_CLIENT_LIST_STACKING")                                                 \
    X(NET_CURRENT_DESKTOP, "_NET_CURRENT_DESKTOP")                                                           \
    X(NET_FRAME_EXTENTS, "_NET_FRAME_EXTENTS")                                                               \
    X(NET_RESTACK_WINDOW, "_NET_RESTACK_WINDOW")                                                             \
    X(NET_SUPPORTING_WM_CHECK, "_NET_SUPPORTING_WM_CHECK")                                                   \
    X(NET_WM_DESKTOP, "_NET_WM_DESKTOP")                                                                     \
    X(NET_WM_NAME, "_NET_WM_NAME")                                                                           \
    X(NET_WM_PID, "_NET_WM_PID")                                                                             \
    X(NET_WM_STATE, "_NET_WM_STATE")                                                                         \
    X(NET_WM_STATE_ABOVE, "_NET_WM_STATE_ABOVE")                                                             \
    X(NET_WM_STATE_BELOW, "_NET_WM_STATE_BELOW")                                                             \
    X(NET_WM_STATE_HIDDEN, "_NET_WM_STATE_HIDDEN")                                                           \
    X(NET_WM_STATE_SKIP_PAGER, "_NET_WM_STATE_SKIP_PAGER")                                                   \
    X(NET_WM_STATE_SKIP_TASKBAR, "_NET_WM_STATE_SKIP_TASKBAR")                                               \
    X(NET_WM_WINDOW_OPACITY, "_NET_WM_WINDOW_OPACITY")                                                       \
    X(NET_WM_WINDOW_TYPE, "_NET_WM_WINDOW_TYPE")                                                             \
    X(NET_WM_WINDOW_TYPE_DESKTOP, "_NET_WM_WINDOW_TYPE_DESKTOP")                                             \
    X(NET_WM_WINDOW_TYPE_DOCK, "_NET_WM_WINDOW_TYPE_DOCK")                                                   \
    X(NET_WM_WINDOW_TYPE_UTILITY, "_NET_WM_WINDOW_TYPE_UTILITY")                                             \
    X(NET_WORKAREA, "_NET_WORKAREA")                                                                         \
    X(GTK_APPLICATION_ID, "_GTK_APPLICATION_ID")                                                             \
    X(GTK_FRAME_EXTENTS, "_GTK_FRAME_EXTENTS")                                                               \
    X(NET_WM_PING, "_NET_WM_PING")                                                                           \
    X(SKYLET_HOLES, "_SKYLET_HOLES")                                                                         \
    X(SKYLET_TIME, "_SKYLET_TIME")

struct Atoms {
#define SKYLET_X11_DECLARE(member, name) xcb_atom_t member = XCB_ATOM_NONE;
    SKYLET_X11_ATOMS(SKYLET_X11_DECLARE)
#undef SKYLET_X11_DECLARE
};

// One round trip for all of them.
[[nodiscard]] Atoms internAtoms(xcb_connection_t* connection);

} // namespace skylet::platform::x11
