#include "WaylandSocketWatch.h"

#include <QFileInfo>

namespace tilewright {

namespace {

constexpr std::chrono::milliseconds firstInterval{10};
/// The last look is two and a half seconds after the change.
constexpr int mostLooks = 8;

} // namespace

WaylandSocketWatch::WaylandSocketWatch(MainLoop& loop, const QString& socketPath)
    : loop_(loop)
    , path_(QFileInfo(socketPath).path()) {
    connect(&folder_, &QFileSystemWatcher::directoryChanged, this, &WaylandSocketWatch::lookAgain);
}

WaylandSocketWatch::~WaylandSocketWatch() = default;

void WaylandSocketWatch::start() {
    if (!path_.isEmpty())
        folder_.addPath(path_);
    lookAgain();
}

void WaylandSocketWatch::stop() {
    if (!path_.isEmpty())
        folder_.removePath(path_);
    next_.reset();
}

void WaylandSocketWatch::lookAgain() {
    looksLeft_ = mostLooks;
    look();
}

void WaylandSocketWatch::look() {
    const auto interval = firstInterval * (1 << (mostLooks - looksLeft_));
    --looksLeft_;
    next_.reset();
    if (looksLeft_ > 0)
        next_ = ScopedTimer(loop_.scheduleOnce(interval, [this] { look(); }));
    Q_EMIT worthATry();
}

} // namespace tilewright
