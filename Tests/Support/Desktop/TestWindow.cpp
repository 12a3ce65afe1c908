// A window for tests to move about: TestWindow TITLE window|dialog [X Y WIDTH HEIGHT].

#include <QApplication>
#include <QDialog>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 3)
        return 2;
    const bool isDialog = arguments[2] == QStringLiteral("dialog");
    std::unique_ptr<QWidget> window;
    if (isDialog) {
        window = std::make_unique<QDialog>();
        window->setFixedSize(420, 260);
    } else {
        window = std::make_unique<QWidget>();
        window->resize(640, 420);
    }
    window->setWindowTitle(arguments[1]);
    if (arguments.size() == 7) {
        window->move(arguments[3].toInt(), arguments[4].toInt());
        if (!isDialog)
            window->resize(arguments[5].toInt(), arguments[6].toInt());
    }
    window->show();
    return QApplication::exec();
}
