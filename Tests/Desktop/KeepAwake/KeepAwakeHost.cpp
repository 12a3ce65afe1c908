// The keep-awake manager on the real services of a Linux desktop, told what to do line by line on
// its standard input: a process of its own, so that a test can kill it. With --control it shows the
// control too, with --dark in a dark palette; with --window a window with nothing but a title.

#include <KeepAwake/KeepAwakeManager.h>
#include <TilewrightUI/KeepAwakeControl.h>
#include <TilewrightUI/Look.h>
#include <X11/X11Platform.h>

#include <QApplication>
#include <QBoxLayout>
#include <QElapsedTimer>
#include <QPainter>
#include <QSocketNotifier>
#include <QTextStream>
#include <QWindow>
#include <array>
#include <unistd.h>

using namespace tilewright;

namespace {

/// Does what a line says, or looks whether its window has the focus, and answers "active" or
/// "inactive", and the time that took in µs.
void obey(const QString& line) {
    KeepAwakeManager& manager = KeepAwakeManager::shared();
    const QStringList words = line.split(QLatin1Char(' '));
    QElapsedTimer timer;
    timer.start();
    if (words[0] == QStringLiteral("indefinite"))
        manager.activate(KeepAwakeSession::indefinite());
    else if (words[0] == QStringLiteral("timed"))
        manager.activate(KeepAwakeSession::timed(words.value(1).toDouble()));
    else if (words[0] == QStringLiteral("deactivate"))
        manager.deactivate();
    const bool isYes = words[0] == QStringLiteral("focused")
                           ? QGuiApplication::focusWindow() != nullptr
                           : manager.isActive();
    const qint64 microseconds = timer.nsecsElapsed() / 1000;
    QTextStream(stdout) << (isYes ? "active " : "inactive ") << microseconds << Qt::endl;
}

QPalette darkPalette() {
    QPalette palette(QColor(0x2b, 0x2c, 0x30));
    palette.setColor(QPalette::Base, QColor(0x1f, 0x20, 0x23));
    return palette;
}

/// The control alone in a window, on the panel's ground.
class ControlWindow final : public QWidget {
public:
    ControlWindow() {
        setWindowTitle(QStringLiteral("Keep Awake Control"));
        auto* column = new QVBoxLayout(this);
        constexpr int padding = 16;
        column->setContentsMargins(padding, padding, padding, padding);
        column->addWidget(new KeepAwakeControl);
        column->addStretch();
        constexpr QSize size(292, 140);
        setFixedSize(size);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter(this).fillRect(rect(), look::panelFill(palette()));
    }
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const auto platform = X11Platform::open();
    if (!platform)
        return EXIT_FAILURE;
    const Platform::Installation installation(*platform);

    std::unique_ptr<ControlWindow> window;
    const QStringList arguments = QApplication::arguments();
    if (arguments.contains(QStringLiteral("--dark")))
        QApplication::setPalette(darkPalette());
    if (arguments.contains(QStringLiteral("--control"))) {
        window = std::make_unique<ControlWindow>();
        window->show();
    }

    // It never paints, for which Qt would wait for the display server.
    QWindow bare;
    if (arguments.contains(QStringLiteral("--window"))) {
        bare.setTitle(QStringLiteral("Keep Awake"));
        bare.setFlag(Qt::BypassWindowManagerHint);
        bare.setGeometry(100, 100, 200, 100);
        bare.show();
    }

    QByteArray pending;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &input, [&] {
        std::array<char, 256> buffer{};
        const auto count = read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count <= 0) {
            QCoreApplication::quit();
            return;
        }
        pending.append(buffer.data(), count);
        for (qsizetype end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
            obey(QString::fromUtf8(pending.left(end)));
            pending.remove(0, end + 1);
        }
    });
    QTextStream(stdout) << "ready" << Qt::endl;
    return QApplication::exec();
}
