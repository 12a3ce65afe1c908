#pragma once

#include <PrivateHome.h>
#include <Waiting.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <cstdlib>
#include <gtest/gtest.h>
#include <tuple>
#include <unistd.h>

namespace tilewright::testing {

/// Sway without a screen: one display of 1920 by 1080 pixels, on which every window is full-screen.
class SwaySession {
public:
    enum class Beside { nothing, xServer };

    explicit SwaySession(double scale = 1, Beside beside = Beside::nothing) {
        using namespace Qt::StringLiterals;
        environment_.insert(u"HOME"_s, folder_.path());
        environment_.insert(u"XDG_RUNTIME_DIR"_s, folder_.path());
        environment_.insert(u"WLR_BACKENDS"_s, u"headless"_s);
        environment_.insert(u"WLR_RENDERER"_s, u"pixman"_s);
        environment_.insert(u"WLR_LIBINPUT_NO_DEVICES"_s, u"1"_s);
        QFile config(folder_.filePath(u"config"_s));
        EXPECT_TRUE(config.open(QIODevice::WriteOnly));
        // The server lets in whoever is the same user, which the tests may not be.
        const QString letIn = beside == Beside::xServer
                                  ? u"exec xhost +local: && echo $DISPLAY > "_s + xDisplayFile()
                                  : QString();
        config.write(u"output HEADLESS-1 mode 1920x1080 scale %1\n"
                     "xwayland %2\n"
                     "for_window [app_id=\".*\"] fullscreen enable\n%3\n"_s
                         .arg(QString::number(scale),
                              beside == Beside::xServer ? u"enable"_s : u"disable"_s, letIn)
                         .toUtf8());
        config.close();
        start();
    }

    void start() {
        using namespace Qt::StringLiterals;
        QStringList words{u"sway"_s, u"-c"_s, folder_.filePath(u"config"_s)};
        // It refuses to be root, as whom tests may run.
        if (::geteuid() == 0) {
            constexpr uid_t nobody = 65534;
            EXPECT_EQ(::chown(QFile::encodeName(folder_.path()).constData(), nobody, nobody), 0);
            words = QStringList{u"setpriv"_s, u"--reuid=%1"_s.arg(nobody),
                                u"--regid=%1"_s.arg(nobody), u"--clear-groups"_s} +
                    words;
        }
        const QString program = words.takeFirst();
        EXPECT_TRUE(compositor_.start(program, words, environment_, log()));
        EXPECT_TRUE(waitUntil([&] {
            const QStringList sockets =
                QDir(folder_.path()).entryList({u"sway-ipc.*"_s}, QDir::System | QDir::Files);
            if (sockets.isEmpty() || !QFile::exists(socketPath()))
                return false;
            environment_.insert(u"SWAYSOCK"_s, folder_.filePath(sockets.front()));
            return true;
        })) << logged();
        environment_.insert(u"WAYLAND_DISPLAY"_s, u"wayland-1"_s);
    }
    /// Ends it as a crash does, its socket left behind, and starts another in its place.
    void replace() {
        using namespace Qt::StringLiterals;
        compositor_.stop();
        for (const QString& name : QDir(folder_.path()).entryList({u"sway-ipc.*"_s}, QDir::System))
            QFile::remove(folder_.filePath(name));
        start();
    }
    void command(const QString& words) {
        using namespace Qt::StringLiterals;
        std::ignore = outputOf(u"swaymsg"_s, words.split(u' '), environment_);
    }
    [[nodiscard]] QString socketPath() const {
        return folder_.filePath(QStringLiteral("wayland-1"));
    }
    /// The name of the X server beside it.
    [[nodiscard]] QString xDisplay() const {
        QString display;
        EXPECT_TRUE(waitUntil([&] {
            QFile file(xDisplayFile());
            if (file.open(QIODevice::ReadOnly))
                display = QString::fromUtf8(file.readAll()).trimmed();
            return !display.isEmpty();
        })) << logged();
        return display;
    }
    [[nodiscard]] const QProcessEnvironment& environment() const { return environment_; }
    [[nodiscard]] const QTemporaryDir& folder() const { return folder_; }

    /// What a display shows, in its own pixels.
    [[nodiscard]] QImage picture(const QString& display = QStringLiteral("HEADLESS-1")) const {
        using namespace Qt::StringLiterals;
        const QString file = folder_.filePath(u"picture.ppm"_s);
        std::ignore =
            outputOf(u"grim"_s, {u"-t"_s, u"ppm"_s, u"-o"_s, display, file}, environment_);
        return QImage(file).convertToFormat(QImage::Format_RGB32);
    }

private:
    [[nodiscard]] QString xDisplayFile() const {
        return folder_.filePath(QStringLiteral("display"));
    }
    [[nodiscard]] QString log() const { return folder_.filePath(QStringLiteral("sway.log")); }
    [[nodiscard]] std::string logged() const {
        QFile file(log());
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
    }

    QTemporaryDir folder_;
    QProcessEnvironment environment_ = inheritedEnvironment();
    Subprocess compositor_;
};

} // namespace tilewright::testing
