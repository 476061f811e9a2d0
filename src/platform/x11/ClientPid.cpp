#include "platform/x11/ClientPid.h"

#include <cstdint>
#include <limits>

namespace skylet::platform::x11 {

namespace {

// A window may have the pid property of any value; only what can be a process counts.
std::optional<ProcessID> toPid(std::uint32_t value) {
    constexpr auto maximum = static_cast<std::uint32_t>(std::numeric_limits<ProcessID>::max());
    return value > 0 && value <= maximum ? std::optional(static_cast<ProcessID>(value)) : std::nullopt;
}

std::vector<PendingProperty> askClaims(Connection& connection, std::span<const xcb_window_t> windows) {
    std::vector<PendingProperty> claims;
    claims.reserve(windows.size());
    for (const xcb_window_t window : windows) {
        claims.push_back(
            askProperty(connection, window, connection.atoms().NET_WM_PID, XCB_ATOM_CARDINAL, 1));
    }
    return claims;
}

void takeClaims(std::unordered_map<xcb_window_t, ProcessID>& pids, std::span<const xcb_window_t> windows,
                std::vector<PendingProperty>& claims) {
    for (std::size_t i = 0; i < windows.size(); ++i) {
        if (const auto claim = firstItem(claims[i], XCB_ATOM_CARDINAL)) {
            if (const auto pid = toPid(*claim)) {
                pids.emplace(windows[i], *pid);
            }
        }
    }
}

// The answer names each client by the base of its resource identifiers.
std::unordered_map<std::uint32_t, ProcessID> pidsByBase(const xcb_res_query_client_ids_reply_t& reply) {
    std::unordered_map<std::uint32_t, ProcessID> result;
    for (auto it = xcb_res_query_client_ids_ids_iterator(&reply); it.rem > 0;
         xcb_res_client_id_value_next(&it)) {
        if ((it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) == 0 || it.data->length < 4) {
            continue;
        }
        if (const auto pid = toPid(*xcb_res_client_id_value_value(it.data))) {
            result.emplace(it.data->spec.client, *pid);
        }
    }
    return result;
}

} // namespace

PendingClientPids::PendingClientPids(Connection& connection, std::span<const xcb_window_t> windows)
    : connection_(connection)
    , windows_(windows.begin(), windows.end()) {
    if (windows_.empty()) {
        return;
    }
    if (!connection_.extensions().resource) {
        claims_ = askClaims(connection_, windows_);
        return;
    }
    std::vector<xcb_res_client_id_spec_t> specs;
    specs.reserve(windows_.size());
    for (const xcb_window_t window : windows_) {
        specs.push_back({window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID});
    }
    ids_ = connection_.ask<xcb_res_query_client_ids, xcb_res_query_client_ids_reply>(
        static_cast<std::uint32_t>(specs.size()), static_cast<const xcb_res_client_id_spec_t*>(specs.data()));
}

std::unordered_map<xcb_window_t, ProcessID> PendingClientPids::read() {
    std::unordered_map<xcb_window_t, ProcessID> pids;
    if (const auto* reply = ids_.get()) {
        const auto byBase = pidsByBase(*reply);
        const std::uint32_t idMask = xcb_get_setup(connection_.raw())->resource_id_mask;
        for (const xcb_window_t window : windows_) {
            if (const auto it = byBase.find(window & ~idMask); it != byBase.end()) {
                pids.emplace(window, it->second);
            }
        }
    }
    if (!claims_.empty()) {
        takeClaims(pids, windows_, claims_);
        return pids;
    }
    std::vector<xcb_window_t> unknown;
    for (const xcb_window_t window : windows_) {
        if (!pids.contains(window)) {
            unknown.push_back(window);
        }
    }
    auto claims = askClaims(connection_, unknown);
    takeClaims(pids, unknown, claims);
    return pids;
}

std::unordered_map<xcb_window_t, ProcessID> clientPids(Connection& connection,
                                                       std::span<const xcb_window_t> windows) {
    return PendingClientPids(connection, windows).read();
}

std::optional<ProcessID> clientPid(Connection& connection, xcb_window_t window) {
    const auto pids = clientPids(connection, std::span(&window, 1));
    return pids.empty() ? std::nullopt : std::optional(pids.begin()->second);
}

} // namespace skylet::platform::x11
