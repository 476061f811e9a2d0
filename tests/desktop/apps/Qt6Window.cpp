// A window that shows the lines of its standard input.
#include <QApplication>
#include <QListWidget>
#include <QSocketNotifier>

#include <iostream>
#include <string>
#include <unistd.h>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QListWidget window;
    window.setWindowTitle(QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    window.setGeometry(100, 90, 480, 320);
    window.addItem(QStringLiteral("Qt 6"));
    window.show();
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &window, [&window, &input] {
        std::string line;
        if (std::getline(std::cin, line)) {
            window.insertItem(0, QString::fromStdString(line));
        } else {
            input.setEnabled(false);
        }
    });
    return QApplication::exec();
}
