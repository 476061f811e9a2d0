#include "settings/L10n.h"

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>
#include <QString>

#include <optional>

namespace skylet {

namespace {

constexpr int defaultPrecision = 6; // printf's

QString lookUp(const char* key, const char* defaultValue) {
    const QString found = QCoreApplication::translate("Localizable", key);
    return found == QString::fromUtf8(key) ? QString::fromUtf8(defaultValue) : found;
}

std::optional<QString> formatted(const L10n::Argument& argument, QChar conversion, const QString& precision) {
    QLocale locale;
    // printf groups no digits unless told to.
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    if (const auto* text = std::get_if<std::string>(&argument)) {
        const bool fits = conversion == u'@' || conversion == u's';
        return fits ? std::optional(QString::fromStdString(*text)) : std::nullopt;
    }
    if (const auto* number = std::get_if<std::int64_t>(&argument)) {
        const bool fits = conversion == u'd' || conversion == u'i' || conversion == u'u';
        return fits ? std::optional(locale.toString(static_cast<qlonglong>(*number))) : std::nullopt;
    }
    if (conversion == u'f') {
        const int digits = precision.isEmpty() ? defaultPrecision : precision.toInt();
        return locale.toString(std::get<double>(argument), 'f', digits);
    }
    return std::nullopt;
}

} // namespace

std::string L10n::string(const char* key, const char* defaultValue) {
    return lookUp(key, defaultValue).toStdString();
}

std::string L10n::format(const char* key, const char* defaultValue, const std::vector<Argument>& arguments) {
    static const QRegularExpression directive(
        QStringLiteral(R"(%(?:(\d{1,2})\$)?(?:\.(\d{1,2}))?(?:l{1,2}|z|h)?([@sdiuf%]))"));
    const QString text = lookUp(key, defaultValue);
    QString result;
    qsizetype done = 0;
    std::size_t next = 0;
    for (auto matches = directive.globalMatch(text); matches.hasNext();) {
        const auto match = matches.next();
        result += QStringView(text).mid(done, match.capturedStart() - done);
        done = match.capturedEnd();
        const QChar conversion = match.capturedView(3).front();
        if (conversion == u'%') {
            result += u'%';
            continue;
        }
        const std::size_t index =
            match.capturedView(1).isEmpty() ? next++ : match.capturedView(1).toULong() - 1;
        std::optional<QString> words;
        if (index < arguments.size()) {
            words = formatted(arguments[index], conversion, match.captured(2));
        }
        result += words.value_or(match.captured());
    }
    result += QStringView(text).mid(done);
    return result.toStdString();
}

} // namespace skylet
