// A window with a long text and, behind a tab that is not shown, another one.
#include "support/ThreadSanitizer.h"

#include <QApplication>
#include <QPlainTextEdit>
#include <QStringList>
#include <QTabWidget>

namespace {

QString lines(int count) {
    QStringList all;
    for (int i = 0; i < count; ++i) {
        all << QStringLiteral("line %1").arg(i);
    }
    return all.join(QLatin1Char('\n'));
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QTabWidget window;
    window.setWindowTitle(QStringLiteral("scrolled"));
    window.setGeometry(100, 90, 480, 320);
    window.addTab(new QPlainTextEdit(lines(500)), QStringLiteral("shown"));
    window.addTab(new QPlainTextEdit(lines(500)), QStringLiteral("hidden"));
    window.show();
    return QApplication::exec();
}
