// The text of an INI file whose ungrouped keys (group [General]) are read and changed line by line.
//
// Comments, other groups, unknown keys, their order and the line endings stay as they are, byte for byte:
// only the value of a written key changes. The form is that of QSettings' INI files. Threads: a plain value.
// Failure: lines that are neither are kept and ignored.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace skylet::platform::qt {

class IniDocument {
  public:
    // `bytes` is valid UTF-8.
    explicit IniDocument(std::string bytes = {}) : bytes_(std::move(bytes)) {}

    // The raw values, as they stand in the file, of all keys of the group. Of a key that stands there twice
    // the last one counts.
    [[nodiscard]] std::map<std::string, std::string, std::less<>> values() const;
    // A key that is not there yet is added at the end of the group.
    void set(std::string_view key, std::string_view rawValue);
    void remove(std::string_view key);

    [[nodiscard]] const std::string& bytes() const { return bytes_; }

  private:
    std::string bytes_;
};

// The text that a raw value stands for: without quotes, escapes resolved. Nothing for a list and for Qt's own
// encodings of other types.
[[nodiscard]] std::optional<std::string> textOfRawValue(std::string_view rawValue);
// The raw value that stands for a text.
[[nodiscard]] std::string rawValueOfText(std::string_view text);

} // namespace skylet::platform::qt
