#include "platform/x11/Atoms.h"

#include "platform/x11/Reply.h"

#include <array>
#include <string_view>
#include <vector>

namespace skylet::platform::x11 {

Atoms internAtoms(xcb_connection_t* connection) {
    struct Entry {
        xcb_atom_t Atoms::*member;
        std::string_view name;
    };
    static constexpr auto entries = std::to_array<Entry>({
#define SKYLET_X11_LIST(member, name) {&Atoms::member, name},
        SKYLET_X11_ATOMS(SKYLET_X11_LIST)
#undef SKYLET_X11_LIST
    });

    std::vector<Pending<xcb_intern_atom_reply>> pending;
    pending.reserve(entries.size());
    for (const Entry& entry : entries) {
        pending.emplace_back(
            connection,
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(entry.name.size()), entry.name.data()));
    }
    Atoms atoms;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (const auto* reply = pending[i].get()) {
            atoms.*entries[i].member = reply->atom;
        }
    }
    return atoms;
}

} // namespace skylet::platform::x11
