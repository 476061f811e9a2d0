#include "platform/x11/Property.h"

#include <QByteArrayView>
#include <QLatin1StringView>
#include <QString>

#include <cstring>
#include <string_view>

namespace skylet::platform::x11 {

namespace {

std::string_view bytes(const xcb_get_property_reply_t& reply) {
    if (reply.format != 8) {
        return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(&reply)),
            static_cast<std::size_t>(xcb_get_property_value_length(&reply))};
}

std::string fromLatin1(std::string_view latin1) {
    return QString::fromLatin1(latin1.data(), static_cast<qsizetype>(latin1.size())).toStdString();
}

// A cut in the middle of a character leaves up to three bytes of it behind.
std::string_view withoutCutCharacter(std::string_view utf8) {
    for (std::size_t back = 1; back <= 4 && back <= utf8.size(); ++back) {
        const auto byte = static_cast<unsigned char>(utf8[utf8.size() - back]);
        if ((byte & 0xC0) == 0x80) {
            continue;
        }
        const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
        return length > back ? utf8.substr(0, utf8.size() - back) : utf8;
    }
    return utf8;
}

} // namespace

PendingProperty askProperty(Connection& connection, xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                            std::uint32_t maximumItems) {
    return connection.ask<xcb_get_property, xcb_get_property_reply>(std::uint8_t{0}, window, property, type,
                                                                    0U, maximumItems);
}

PendingProperty askText(Connection& connection, xcb_window_t window, xcb_atom_t property) {
    return askProperty(connection, window, property, XCB_GET_PROPERTY_TYPE_ANY, maximumTextBytes / 4);
}

std::vector<std::uint32_t> items(PendingProperty& pending, xcb_atom_t type) {
    const auto* reply = pending.get();
    if (!reply || reply->type != type || reply->format != 32) {
        return {};
    }
    const auto count = static_cast<std::size_t>(xcb_get_property_value_length(reply)) / 4;
    std::vector<std::uint32_t> values(count);
    if (count != 0) {
        std::memcpy(values.data(), xcb_get_property_value(reply), count * 4);
    }
    return values;
}

std::optional<std::uint32_t> firstItem(PendingProperty& pending, xcb_atom_t type) {
    const auto values = items(pending, type);
    return values.empty() ? std::nullopt : std::optional(values.front());
}

std::optional<std::string> text(PendingProperty& pending, const Atoms& atoms) {
    const auto* reply = pending.get();
    if (!reply || reply->format != 8 ||
        (reply->type != atoms.UTF8_STRING && reply->type != XCB_ATOM_STRING)) {
        return std::nullopt;
    }
    std::string_view value = bytes(*reply);
    const bool isCut = reply->bytes_after > 0;
    if (const auto end = value.find('\0'); end != std::string_view::npos) {
        value = value.substr(0, end);
    }
    if (reply->type == XCB_ATOM_STRING) {
        return fromLatin1(value);
    }
    if (isCut) {
        value = withoutCutCharacter(value);
    }
    return QString::fromUtf8(QByteArrayView(value.data(), static_cast<qsizetype>(value.size())))
        .toStdString();
}

std::optional<WindowClass> windowClass(PendingProperty& pending) {
    const auto* reply = pending.get();
    if (!reply || reply->type != XCB_ATOM_STRING || reply->format != 8) {
        return std::nullopt;
    }
    const std::string_view value = bytes(*reply);
    const auto end = value.find('\0');
    WindowClass result{fromLatin1(value.substr(0, end)), {}};
    if (end != std::string_view::npos) {
        const std::string_view rest = value.substr(end + 1);
        result.className = fromLatin1(rest.substr(0, rest.find('\0')));
    }
    return result;
}

} // namespace skylet::platform::x11
