#include "LayerSession.h"

#include <ListeningSocket.h>
#include <Waiting.h>

#include <QFile>
#include <cstdlib>
#include <gtest/gtest.h>
#include <tuple>
#include <unistd.h>

namespace tilewright::testing {

using namespace Qt::StringLiterals;

LayerSession::LayerSession() {
    set(u"HOME"_s, folder_.path());
    set(u"XDG_RUNTIME_DIR"_s, folder_.path());
    set(u"WLR_BACKENDS"_s, u"headless"_s);
    set(u"WLR_RENDERER"_s, u"pixman"_s);
    set(u"WLR_LIBINPUT_NO_DEVICES"_s, u"1"_s);
}

void LayerSession::startCompositor(const QString& program, const QStringList& arguments) {
    QStringList words = QStringList{program} + arguments;
    // Some refuse to be root, as whom tests may run.
    if (::geteuid() == 0) {
        constexpr uid_t nobody = 65534;
        EXPECT_EQ(::chown(QFile::encodeName(folder_.path()).constData(), nobody, nobody), 0);
        words = QStringList{u"setpriv"_s, u"--reuid=%1"_s.arg(nobody), u"--regid=%1"_s.arg(nobody),
                            u"--clear-groups"_s} +
                words;
    }
    QProcessEnvironment own = environment_;
    own.remove(u"WAYLAND_DISPLAY"_s);
    const QString first = words.takeFirst();
    EXPECT_TRUE(compositor_.start(first, words, own, log()));
    EXPECT_TRUE(waitUntil([&] { return isListenedAt(socketPath()); })) << logged();
    set(u"WAYLAND_DISPLAY"_s, socketName());
}

QString LayerSession::xDisplay() const {
    QString display;
    EXPECT_TRUE(waitUntil([&] {
        QFile file(xDisplayFile());
        if (file.open(QIODevice::ReadOnly))
            display = QString::fromUtf8(file.readAll()).trimmed();
        return !display.isEmpty();
    })) << logged();
    return display;
}

QImage LayerSession::picture(const QString& display) const {
    const QString file = folder_.filePath(u"picture.ppm"_s);
    std::ignore = outputOf(u"grim"_s, {u"-t"_s, u"ppm"_s, u"-o"_s, display, file}, environment_);
    return QImage(file).convertToFormat(QImage::Format_RGB32);
}

std::string LayerSession::logged() const {
    QFile file(log());
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

} // namespace tilewright::testing
