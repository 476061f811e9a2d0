#include "platform/qt/AutostartEntry.h"

#include "platform/qt/GuardedFile.h"

#include <QDir>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

namespace skylet::platform::qt {

namespace {

constexpr std::string_view group = "[Desktop Entry]";

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
    Lines lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// The lines of the one group that counts: [first, second), without its header; empty without the group.
std::pair<std::size_t, std::size_t> groupOf(const Lines& lines) {
    std::size_t first = 0;
    while (first < lines.size() && trimmed(lines[first]) != group) {
        ++first;
    }
    if (first == lines.size()) {
        return {first, first};
    }
    std::size_t end = ++first;
    while (end < lines.size() && !trimmed(lines[end]).starts_with('[')) {
        ++end;
    }
    return {first, end};
}

std::optional<std::size_t> find(const Lines& lines, std::string_view key) {
    const auto [first, end] = groupOf(lines);
    for (std::size_t i = first; i < end; ++i) {
        const std::string_view line = lines[i];
        const std::size_t equals = line.find('=');
        if (equals != std::string_view::npos && trimmed(line.substr(0, equals)) == key) {
            return i;
        }
    }
    return std::nullopt;
}

std::string valueOf(const Lines& lines, std::string_view key) {
    const auto line = find(lines, key);
    return line ? std::string(trimmed(std::string_view(lines[*line]).substr(lines[*line].find('=') + 1)))
                : std::string();
}

void setValue(Lines& lines, std::string_view key, const std::string& value) {
    const std::string text = std::string(key) + "=" + value;
    if (const auto line = find(lines, key)) {
        lines[*line] = text;
        return;
    }
    // Blank lines before the next group stay there.
    auto [first, end] = groupOf(lines);
    while (end > first && trimmed(lines[end - 1]).empty()) {
        --end;
    }
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(end), text);
}

// Values of type string and localestring escape their backslashes; other escapes cannot occur in a path.
std::string escapedValue(const std::string& value) {
    std::string escaped;
    for (const char c : value) {
        switch (c) {
        case '\\':
            escaped += "\\\\";
            break;
        case '\n':
            escaped += "\\n";
            break;
        case '\t':
            escaped += "\\t";
            break;
        case '\r':
            escaped += "\\r";
            break;
        default:
            escaped += c;
        }
    }
    return escaped.starts_with(' ') ? "\\s" + escaped.substr(1) : escaped;
}

// A file name as the Exec key takes it (Desktop Entry Specification 1.5), before the escapes that every value
// of type string has. Always quoted, which is right for every name; a percent sign would begin a field code.
std::string quotedForExec(const std::string& program) {
    std::string quoted = "\"";
    for (const char c : program) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') {
            quoted += '\\';
        }
        quoted += c;
        if (c == '%') {
            quoted += '%';
        }
    }
    return quoted + "\"";
}

} // namespace

std::string AutostartEntry::defaultPath(const std::string& name) {
    const QString configured = qEnvironmentVariable("XDG_CONFIG_HOME");
    const QString folder =
        QDir::isAbsolutePath(configured) ? configured : QDir::homePath() + QStringLiteral("/.config");
    return folder.toStdString() + "/autostart/" + name + ".desktop";
}

AutostartEntry::AutostartEntry(std::string path, std::string title, std::string program)
    : path_(std::move(path))
    , title_(std::move(title))
    , program_(std::move(program)) {}

bool AutostartEntry::isEnabled() const {
    const auto content = GuardedFile(path_).read();
    if (content.state != GuardedFile::State::readable) {
        return false;
    }
    const Lines lines = linesOf(content.bytes);
    return !valueOf(lines, "Exec").empty() && valueOf(lines, "Hidden") != "true" &&
           valueOf(lines, "X-GNOME-Autostart-enabled") != "false";
}

bool AutostartEntry::registerItem() {
    const GuardedFile file(path_);
    const auto content = file.read();
    if (content.state == GuardedFile::State::unreadable || !file.mayReplace()) {
        return false;
    }
    Lines lines = linesOf(content.bytes);
    if (const auto [first, end] = groupOf(lines); first == lines.size() && first == end) {
        lines = {std::string(group)};
    }
    setValue(lines, "Type", "Application");
    setValue(lines, "Name", title_);
    setValue(lines, "Exec", escapedValue(quotedForExec(program_)));
    setValue(lines, "TryExec", escapedValue(program_));
    setValue(lines, "Icon", "com.corvane.skylet");
    setValue(lines, "Terminal", "false");
    setValue(lines, "Hidden", "false");
    setValue(lines, "X-GNOME-Autostart-enabled", "true");
    std::string text;
    for (const std::string& line : lines) {
        text += line;
        text += '\n';
    }
    return file.replace(text) && isEnabled();
}

bool AutostartEntry::unregisterItem() {
    return unlink(path_.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR;
}

} // namespace skylet::platform::qt
