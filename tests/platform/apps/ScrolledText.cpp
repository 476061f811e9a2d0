// A window with a long text and, behind a tab that is not shown, another one.
#include <QApplication>
#include <QPlainTextEdit>
#include <QTabWidget>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QString text = QStringLiteral("line\n").repeated(501).chopped(1);
    QTabWidget window;
    window.setWindowTitle(QStringLiteral("scrolled"));
    window.setGeometry(100, 90, 480, 320);
    window.addTab(new QPlainTextEdit(text), QStringLiteral("shown"));
    window.addTab(new QPlainTextEdit(text), QStringLiteral("hidden"));
    window.show();
    return QApplication::exec();
}
