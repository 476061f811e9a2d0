// The key equivalents of menu items as Qt takes them.
#pragma once

#include "platform/Menu.h"

#include <QKeySequence>

namespace skylet::platform::qt {

// The command modifier is Control here. Empty for an item without a key equivalent.
[[nodiscard]] inline QKeySequence keySequenceOf(const MenuItem& item) {
    const QString key = QString::fromStdString(item.keyEquivalent);
    if (key.isEmpty()) {
        return {};
    }
    const QString shift = key == key.toLower() ? QString() : QStringLiteral("Shift+");
    return QKeySequence::fromString(QStringLiteral("Ctrl+") + shift + key.toUpper());
}

} // namespace skylet::platform::qt
