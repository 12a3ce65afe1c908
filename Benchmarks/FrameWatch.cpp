#include "FrameWatch.h"

#include <QDebug>
#include <Waiting.h>

namespace tilewright::testing {

namespace {

const QString path = QStringLiteral("/frames");

} // namespace

FrameWatch::FrameWatch(PlasmaSession& session, const QString& title)
    : session_(session) {
    QDBusConnection bus = session_.bus();
    bus.registerObject(path, this, QDBusConnection::ExportAllSlots);
    start();
    static_cast<void>(session_.begin(
        QStringLiteral(
            "const w = find('%1');"
            "const numbers = ({x, y, width, height}) => [x, y, width, height].join(' ');"
            "const tell = () => callDBus('%2', '%3', 'org.tilewright.FrameWatch', 'tell',"
            " numbers(w.frameGeometry));"
            "w.frameGeometryChanged.connect(tell); tell()")
            .arg(title, bus.baseService(), path)));
    if (!waitUntil([&] { return !last_.isEmpty(); }))
        qFatal("KWin tells of no frame");
}

FrameWatch::~FrameWatch() {
    session_.bus().unregisterObject(path);
}

void FrameWatch::start() {
    last_ = {};
    nanoseconds_ = 0;
    clock_.start();
}

std::optional<double> FrameWatch::untilFinal(const QRect& frame) {
    constexpr qint64 calm = 500'000'000;
    // Nothing but KWin's word is waited for: looking for it now and then would come too late.
    while (clock_.nsecsElapsed() < nanoseconds_ + calm)
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    if (!isNear(last_, frame, session_.roundOff())) {
        qWarning() << "It is" << last_ << "and should be" << frame;
        return std::nullopt;
    }
    return static_cast<double>(nanoseconds_) / 1e6;
}

void FrameWatch::tell(const QString& frame) {
    nanoseconds_ = clock_.nsecsElapsed();
    const QStringList numbers = frame.split(u' ');
    last_ = QRectF(numbers[0].toDouble(), numbers.value(1).toDouble(), numbers.value(2).toDouble(),
                   numbers.value(3).toDouble())
                .toRect();
}

} // namespace tilewright::testing
