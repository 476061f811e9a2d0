#include "foundation/Text.h"

#include <QString>
#include <QStringDecoder>
#include <QTextBoundaryFinder>

#include <array>
#include <charconv>

namespace skylet {

bool isWellFormedUtf8(std::string_view bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString decoded = decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    return !decoder.hasError();
}

std::string shortened(const std::string& text, std::size_t limit) {
    // A text of few bytes has no more clusters than bytes.
    if (text.size() <= limit) {
        return text;
    }
    const QString whole = QString::fromStdString(text);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, whole);
    for (std::size_t count = 0; count < limit; ++count) {
        if (finder.toNextBoundary() < 0) {
            return text;
        }
    }
    const qsizetype end = finder.position();
    return end >= whole.size() ? text : whole.left(end).toStdString() + "…";
}

std::string formatNumber(double value) {
    std::array<char, 32> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    std::string text(buffer.data(), result.ptr);
    if (text.find_first_not_of("-0123456789") == std::string::npos) {
        text += ".0";
    }
    return text;
}

} // namespace skylet
