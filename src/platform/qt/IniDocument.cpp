#include "platform/qt/IniDocument.h"

#include <QString>

#include <algorithm>
#include <cstddef>
#include <functional>

namespace skylet::platform::qt {

namespace {

constexpr std::string_view blanks = " \t";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view groupName = "general";

// One line: its place in the text, and its key and value where it has them. Places are byte offsets.
struct Line {
    std::size_t begin = 0;
    std::size_t end = 0;  // before the line ending
    std::size_t next = 0; // behind it
    bool inGroup = false;
    bool opensGroup = false;
    std::string_view key; // empty for comments, headers and lines that are none of these
    std::size_t valueBegin = 0;
    std::size_t valueEnd = 0;
};

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isGroupName(std::string_view name) {
    return std::equal(name.begin(), name.end(), groupName.begin(), groupName.end(),
                      [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; });
}

// Where the value that starts at `begin` ends: before a comment and the blanks in front of it.
std::size_t findValueEnd(std::string_view line, std::size_t begin) {
    bool quoted = false;
    std::size_t end = begin;
    for (std::size_t i = begin; i < line.size(); ++i) {
        const char c = line[i];
        if (c == ';' && !quoted) {
            break;
        }
        if (c == '\\' && i + 1 < line.size()) {
            ++i;
        } else if (c == '"') {
            quoted = !quoted;
        }
        if (quoted || blanks.find(c) == std::string_view::npos) {
            end = i + 1;
        }
    }
    return end;
}

// Reads the text line by line. Keys in front of the first group header count as ungrouped.
void forEachLine(std::string_view text, const std::function<void(const Line&)>& visit) {
    bool inGroup = true;
    std::size_t begin = text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
    while (begin < text.size()) {
        Line line;
        line.begin = begin;
        line.end = std::min(text.find_first_of("\r\n", begin), text.size());
        line.next = line.end;
        if (line.next < text.size()) {
            line.next += text.substr(line.next).starts_with("\r\n") ? 2U : 1U;
        }
        const std::string_view whole = text.substr(begin, line.end - begin);
        const std::string_view content = trimmed(whole);
        if (content.starts_with('[')) {
            const auto close = content.find(']');
            inGroup = close != std::string_view::npos && isGroupName(trimmed(content.substr(1, close - 1)));
            line.opensGroup = inGroup;
        } else if (!content.empty() && content.front() != ';' && content.front() != '#') {
            if (const auto equals = whole.find('='); equals != std::string_view::npos) {
                line.key = trimmed(whole.substr(0, equals));
                const auto first = whole.find_first_not_of(blanks, equals + 1);
                const std::size_t valueBegin = first == std::string_view::npos ? equals + 1 : first;
                line.valueBegin = begin + valueBegin;
                line.valueEnd = begin + findValueEnd(whole, valueBegin);
            }
        }
        line.inGroup = inGroup;
        visit(line);
        begin = line.next;
    }
}

bool isHex(QChar c) {
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

// Reads the digits of \xHH... and \OOO.
QChar takeNumber(const QString& raw, qsizetype& i, int base) {
    int code = 0;
    while (i < raw.size() && (base == 16 ? isHex(raw[i]) : (raw[i] >= u'0' && raw[i] <= u'7'))) {
        code = (code * base + QStringView(raw).mid(i, 1).toInt(nullptr, base)) & 0xFFFF;
        ++i;
    }
    return QChar(code);
}

QChar takeEscape(const QString& raw, qsizetype& i) {
    const char16_t c = raw[i].unicode();
    if (c == u'x') {
        return takeNumber(raw, ++i, 16);
    }
    if (c >= u'0' && c <= u'7') {
        return takeNumber(raw, i, 8);
    }
    ++i;
    static constexpr std::u16string_view names = u"abfnrtv";
    static constexpr std::u16string_view meanings = u"\a\b\f\n\r\t\v";
    const auto at = names.find(c);
    return QChar(at == std::u16string_view::npos ? c : meanings[at]);
}

// Quotes and escapes resolved; nothing for a list, whose commas stand outside quotes.
std::optional<QString> unquoted(const QString& raw) {
    QString text;
    bool quoted = false;
    for (qsizetype i = 0; i < raw.size();) {
        const QChar c = raw[i++];
        if (c == u'"') {
            quoted = !quoted;
        } else if (c == u'\\' && i < raw.size()) {
            text += takeEscape(raw, i);
        } else if (c == u',' && !quoted) {
            return std::nullopt;
        } else {
            text += c;
        }
    }
    return text;
}

} // namespace

std::map<std::string, std::string, std::less<>> IniDocument::values() const {
    std::map<std::string, std::string, std::less<>> result;
    forEachLine(bytes_, [&](const Line& line) {
        if (line.inGroup && !line.key.empty()) {
            result.insert_or_assign(std::string(line.key),
                                    bytes_.substr(line.valueBegin, line.valueEnd - line.valueBegin));
        }
    });
    return result;
}

void IniDocument::set(std::string_view key, std::string_view rawValue) {
    std::optional<Line> existing;
    std::optional<std::size_t> groupEnd; // behind the last line of the group that is not blank
    std::string_view ending = "\n";
    forEachLine(bytes_, [&](const Line& line) {
        if (line.inGroup && line.key == key) {
            existing = line;
        }
        if (line.opensGroup || (groupEnd && line.inGroup && line.end > line.begin)) {
            groupEnd = line.next;
        }
        if (line.begin == 0 && line.next > line.end) {
            ending = line.next - line.end == 2 ? "\r\n" : bytes_[line.end] == '\r' ? "\r" : "\n";
        }
    });
    if (existing) {
        bytes_.replace(existing->valueBegin, existing->valueEnd - existing->valueBegin, rawValue);
        return;
    }
    std::string added;
    if (!groupEnd) {
        groupEnd = bytes_.size();
        added = (bytes_.empty() ? "" : std::string(ending)) + "[General]" + std::string(ending);
    }
    if (*groupEnd > 0 && bytes_[*groupEnd - 1] != '\n' && bytes_[*groupEnd - 1] != '\r') {
        added.insert(0, ending);
    }
    added.append(key).append("=").append(rawValue).append(ending);
    bytes_.insert(*groupEnd, added);
}

void IniDocument::remove(std::string_view key) {
    std::string kept;
    std::size_t copied = 0;
    forEachLine(bytes_, [&](const Line& line) {
        if (line.inGroup && line.key == key) {
            kept.append(bytes_, copied, line.begin - copied);
            copied = line.next;
        }
    });
    bytes_ = kept.append(bytes_, copied);
}

std::optional<std::string> textOfRawValue(std::string_view rawValue) {
    auto text = unquoted(QString::fromUtf8(rawValue.data(), static_cast<qsizetype>(rawValue.size())));
    if (!text || !text->startsWith(u'@')) {
        return text ? std::optional(text->toStdString()) : std::nullopt;
    }
    if (text->startsWith(u"@@")) {
        return text->mid(1).toStdString();
    }
    constexpr QStringView byteArray = u"@ByteArray(";
    if (text->startsWith(byteArray) && text->endsWith(u')')) {
        return text->sliced(byteArray.size()).chopped(1).toLatin1().toStdString();
    }
    return std::nullopt;
}

std::string rawValueOfText(std::string_view text) {
    static constexpr std::string_view digits = "0123456789abcdef";
    std::string raw = "\"";
    if (text.starts_with('@')) {
        raw += '@';
    }
    bool afterNumber = false; // a digit behind \xHH would be read as part of it
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool needsNumber = byte < 0x20 || byte == 0x7F || (afterNumber && isHex(QLatin1Char(c)));
        afterNumber = false;
        if (c == '"' || c == '\\') {
            raw.append({'\\', c});
        } else if (c == '\n') {
            raw += "\\n";
        } else if (needsNumber) {
            raw.append({'\\', 'x', digits[byte >> 4U], digits[byte & 0xFU]});
            afterNumber = true;
        } else {
            raw += c;
        }
    }
    return raw + '"';
}

} // namespace skylet::platform::qt
