#include "Legacy.h"

#include <QByteArray>
#include <QList>
#include <QLocale>
#include <cmath>

namespace tilewright {

namespace {

constexpr char option[] = "--display-server-lost=";
constexpr char indefinite[] = "indefinite";

std::optional<Legacy::Session> sessionIn(const QList<QByteArray>& parts) {
    if (parts.size() == 2 && parts[1] == indefinite)
        return Legacy::Session{};
    if (parts.size() != 3)
        return std::nullopt;
    bool isDuration = false;
    bool isEnd = false;
    const double duration = parts[1].toDouble(&isDuration);
    const qint64 end = parts[2].toLongLong(&isEnd);
    if (!isDuration || !isEnd || !std::isfinite(duration))
        return std::nullopt;
    return Legacy::Session{KeepAwakeSession::timed(duration), Legacy::Interval(end)};
}

} // namespace

std::optional<Legacy> Legacy::after(Interval life) const {
    Legacy next = *this;
    next.shortLives = life <= shortLife ? shortLives + 1 : 0;
    return next.shortLives > mostShortLives ? std::nullopt : std::optional(next);
}

std::string Legacy::asArgument() const {
    QList<QByteArray> parts{QByteArray::number(shortLives)};
    if (session) {
        if (const auto* timed = session->session.asTimed())
            parts << QByteArray::number(timed->duration, 'g', QLocale::FloatingPointShortest)
                  << QByteArray::number(static_cast<qint64>(session->end.count()));
        else
            parts << indefinite;
    }
    return (option + parts.join(',')).toStdString();
}

std::optional<Legacy> Legacy::in(std::span<char* const> arguments) {
    for (const char* argument : arguments) {
        const QByteArray text(argument);
        if (!text.startsWith(option))
            continue;
        const QList<QByteArray> parts = text.mid(sizeof option - 1).split(',');
        bool isNumber = false;
        const int shortLives = parts.first().toInt(&isNumber);
        if (isNumber && shortLives >= 0)
            return Legacy{shortLives, sessionIn(parts)};
    }
    return std::nullopt;
}

} // namespace tilewright
