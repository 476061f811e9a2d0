// The names of installed applications, from their desktop entries (Desktop Entry Specification 1.5).
//
// Threads: an index is a plain value; building one reads a few hundred small files and belongs on a worker
// thread. Failure: files that cannot be read or are no application entries are left out.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace skylet::platform::x11 {

class DesktopEntries {
  public:
    // $XDG_DATA_HOME/applications, then those of $XDG_DATA_DIRS, with the specified defaults.
    [[nodiscard]] static std::vector<std::string> defaultDirectories();
    // The language for names: $LC_ALL, $LC_MESSAGES or $LANG, as "it_IT", "sr@latin" and the like.
    [[nodiscard]] static std::string defaultLocale();
    // Tells whether a directory of the list changed since; cheap.
    [[nodiscard]] static std::vector<std::int64_t>
    modificationTimes(const std::vector<std::string>& directories);

    // Entries in earlier directories hide those of the same id in later ones.
    [[nodiscard]] static DesktopEntries read(const std::vector<std::string>& directories,
                                             std::string_view locale);

    // By the class name that an entry claims for its windows.
    [[nodiscard]] std::optional<std::string> nameByWindowClass(std::string_view windowClass) const;
    // By desktop file id, without ".desktop", in any case.
    [[nodiscard]] std::optional<std::string> nameById(std::string_view id) const;

  private:
    using Names = std::map<std::string, std::string, std::less<>>;
    Names byWindowClass_;
    Names byId_; // ids in lower case
};

} // namespace skylet::platform::x11
