#include "platform/x11/DesktopEntries.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace skylet::platform::x11 {

namespace fs = std::filesystem;

namespace {

constexpr qint64 maximumBytes = 262'144;
constexpr std::string_view suffix = ".desktop";
constexpr std::string_view mainGroup = "[Desktop Entry]";

struct Entry {
    bool isApplication = false;
    bool isHidden = false;
    std::string name;
    std::string windowClass;
};

std::string toLower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::string unescaped(std::string_view value) {
    std::string result;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            result += value[i];
            continue;
        }
        static constexpr std::string_view codes = "sntr\\";
        static constexpr std::string_view meanings = " \n\t\r\\";
        const auto at = codes.find(value[++i]);
        result += at == std::string_view::npos ? value[i] : meanings[at];
    }
    return result;
}

// The keys of a name from best to worst: lang_COUNTRY@MODIFIER, lang_COUNTRY, lang@MODIFIER, lang, none.
std::vector<std::string> nameKeys(std::string_view locale) {
    const auto at = locale.find('@');
    const std::string_view modifier = at == std::string_view::npos ? std::string_view() : locale.substr(at);
    const std::string_view withCountry = locale.substr(0, at);
    const std::string_view language = withCountry.substr(0, withCountry.find('_'));
    std::vector<std::string> keys;
    for (const std::string_view base : {withCountry, language}) {
        for (const std::string_view end : {modifier, std::string_view()}) {
            if (!base.empty()) {
                keys.push_back("Name[" + std::string(base) + std::string(end) + "]");
            }
        }
    }
    keys.emplace_back("Name");
    return keys;
}

std::optional<Entry> readEntry(const fs::path& path, const std::vector<std::string>& names) {
    QFile file(QFile::decodeName(path.c_str()));
    if (!file.open(QIODevice::ReadOnly) || file.size() > maximumBytes) {
        return std::nullopt;
    }
    const std::string bytes = file.read(maximumBytes).toStdString();
    Entry entry;
    std::size_t best = names.size();
    bool inMainGroup = false;
    for (std::size_t begin = 0; begin < bytes.size();) {
        const auto end = std::min(bytes.find('\n', begin), bytes.size());
        const std::string_view line = trimmed(std::string_view(bytes).substr(begin, end - begin));
        begin = end + 1;
        if (line.starts_with('[')) {
            inMainGroup = line == mainGroup;
        }
        const auto equals = line.find('=');
        if (!inMainGroup || line.starts_with('#') || equals == std::string_view::npos) {
            continue;
        }
        const std::string_view key = trimmed(line.substr(0, equals));
        const std::string_view value = trimmed(line.substr(equals + 1));
        if (key == "Type") {
            entry.isApplication = value == "Application";
        } else if (key == "Hidden") {
            entry.isHidden = value == "true";
        } else if (key == "StartupWMClass") {
            entry.windowClass = unescaped(value);
        } else if (key.starts_with("Name")) {
            const auto rank =
                static_cast<std::size_t>(std::find(names.begin(), names.end(), key) - names.begin());
            if (rank < best) {
                best = rank;
                entry.name = unescaped(value);
            }
        }
    }
    return entry;
}

// The id is the path below the directory with dashes for slashes.
std::string idOf(const fs::path& relative) {
    std::string id = relative.generic_string();
    id.resize(id.size() - suffix.size());
    std::replace(id.begin(), id.end(), '/', '-');
    return toLower(id);
}

} // namespace

std::vector<std::string> DesktopEntries::defaultDirectories() {
    QString home = qEnvironmentVariable("XDG_DATA_HOME");
    if (!QDir::isAbsolutePath(home)) {
        home = QDir::homePath() + QStringLiteral("/.local/share");
    }
    QString shared = qEnvironmentVariable("XDG_DATA_DIRS");
    if (shared.isEmpty()) {
        shared = QStringLiteral("/usr/local/share:/usr/share");
    }
    std::vector<std::string> directories;
    for (const QString& base : QStringList{home} + shared.split(u':', Qt::SkipEmptyParts)) {
        if (QDir::isAbsolutePath(base)) {
            directories.push_back(QFile::encodeName(base + QStringLiteral("/applications")).toStdString());
        }
    }
    return directories;
}

std::string DesktopEntries::defaultLocale() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        std::string locale = qEnvironmentVariable(variable).toStdString();
        if (locale.empty()) {
            continue;
        }
        // The encoding says nothing about the language.
        if (const auto dot = locale.find('.'); dot != std::string::npos) {
            locale.erase(dot, std::min(locale.find('@', dot), locale.size()) - dot);
        }
        return locale;
    }
    return {};
}

std::vector<std::int64_t> DesktopEntries::modificationTimes(const std::vector<std::string>& directories) {
    std::vector<std::int64_t> times;
    for (const std::string& directory : directories) {
        struct stat status {};
        const bool exists = stat(directory.c_str(), &status) == 0;
        times.push_back(exists ? std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec
                               : 0);
    }
    return times;
}

DesktopEntries DesktopEntries::read(const std::vector<std::string>& directories, std::string_view locale) {
    DesktopEntries result;
    const auto names = nameKeys(locale);
    std::set<std::string> seen;
    for (const std::string& directory : directories) {
        std::error_code error;
        fs::recursive_directory_iterator it(directory, fs::directory_options::skip_permission_denied, error);
        for (; !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
            const fs::path& path = it->path();
            if (path.extension() != suffix) {
                continue;
            }
            const std::string id = idOf(path.lexically_relative(directory));
            // Also a hidden entry hides those behind it: it stands for one that the user deleted.
            const auto entry = seen.insert(id).second ? readEntry(path, names) : std::nullopt;
            if (!entry || !entry->isApplication || entry->isHidden || entry->name.empty()) {
                continue;
            }
            result.byId_.emplace(id, entry->name);
            if (!entry->windowClass.empty()) {
                result.byWindowClass_.emplace(entry->windowClass, entry->name);
            }
        }
    }
    return result;
}

std::optional<std::string> DesktopEntries::nameByWindowClass(std::string_view windowClass) const {
    const auto it = byWindowClass_.find(windowClass);
    return it == byWindowClass_.end() ? std::nullopt : std::optional(it->second);
}

std::optional<std::string> DesktopEntries::nameById(std::string_view id) const {
    const auto it = byId_.find(toLower(id));
    return it == byId_.end() ? std::nullopt : std::optional(it->second);
}

} // namespace skylet::platform::x11
