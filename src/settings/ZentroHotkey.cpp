#include "settings/ZentroHotkey.h"

#include "foundation/Text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace skylet {

namespace {

using ActiveContext = ZentroHotkey::ActiveContext;

constexpr std::array<std::pair<ActiveContext, const char*>, 2> contextNames{{
    {ActiveContext::anywhere, "anywhere"},
    {ActiveContext::browser, "browser"},
}};

const char* rawValue(ActiveContext context) {
    for (const auto& [value, name] : contextNames) {
        if (value == context) {
            return name;
        }
    }
    return "";
}

std::optional<ActiveContext> contextFromRawValue(const QString& text) {
    for (const auto& [value, name] : contextNames) {
        if (text == QLatin1StringView(name)) {
            return value;
        }
    }
    return std::nullopt;
}

// The text as a JSON string. Qt writes it, as the only element of an array.
std::string quoted(const std::string& text) {
    const QJsonDocument document(QJsonArray{QString::fromStdString(text)});
    const std::string array = document.toJson(QJsonDocument::Compact).toStdString();
    return array.substr(1, array.size() - 2);
}

// The whole number between 0 and `highest`.
std::optional<std::uint64_t> wholeNumber(const QJsonValue& value, std::uint64_t highest) {
    const qint64 number = value.toInteger(-1);
    if (number < 0 || static_cast<std::uint64_t>(number) > highest) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(number);
}

std::optional<ZentroHotkey> decodeHotkey(const QJsonValue& value) {
    const QJsonObject object = value.toObject();
    const QJsonValue title = object[QLatin1StringView("actionTitle")];
    const auto keyCode =
        wholeNumber(object[QLatin1StringView("keyCode")], std::numeric_limits<std::uint16_t>::max());
    const auto modifiers =
        wholeNumber(object[QLatin1StringView("modifiers")], std::numeric_limits<std::uint64_t>::max());
    const auto context = contextFromRawValue(object[QLatin1StringView("activeContext")].toString());
    if (!title.isString() || !keyCode || !modifiers || !context) {
        return std::nullopt;
    }
    return ZentroHotkey{.actionTitle = title.toString().toStdString(),
                        .keyCode = static_cast<std::uint16_t>(*keyCode),
                        .modifiers = *modifiers,
                        .activeContext = *context};
}

} // namespace

// Written by hand because Qt's objects sort their keys.
std::optional<std::string> encodeHotkeys(const std::vector<ZentroHotkey>& hotkeys) {
    std::string json = "[";
    for (const ZentroHotkey& hotkey : hotkeys) {
        if (!isWellFormedUtf8(hotkey.actionTitle)) {
            return std::nullopt;
        }
        json += json.size() > 1 ? "," : "";
        json += R"({"actionTitle":)" + quoted(hotkey.actionTitle);
        json += R"(,"keyCode":)" + std::to_string(hotkey.keyCode);
        json += R"(,"modifiers":)" + std::to_string(hotkey.modifiers);
        json += R"(,"activeContext":")" + std::string(rawValue(hotkey.activeContext)) + R"("})";
    }
    return json + "]";
}

std::optional<std::vector<ZentroHotkey>> decodeHotkeys(std::string_view json) {
    const auto document =
        QJsonDocument::fromJson(QByteArray(json.data(), static_cast<qsizetype>(json.size())));
    if (!document.isArray()) {
        return std::nullopt;
    }
    std::vector<ZentroHotkey> hotkeys;
    for (const auto& value : document.array()) {
        auto hotkey = decodeHotkey(value);
        if (!hotkey) {
            return std::nullopt;
        }
        hotkeys.push_back(std::move(*hotkey));
    }
    return hotkeys;
}

} // namespace skylet

std::size_t std::hash<skylet::ZentroHotkey>::operator()(const skylet::ZentroHotkey& hotkey) const noexcept {
    constexpr std::size_t factor = 31;
    std::size_t value = std::hash<std::string>()(hotkey.actionTitle);
    value = value * factor + hotkey.keyCode;
    value = value * factor + std::hash<std::uint64_t>()(hotkey.modifiers);
    return value * factor + static_cast<std::size_t>(hotkey.activeContext);
}
