#include "GnomeStartList.h"

#include <algorithm>
#include <utility>

namespace tilewright {

namespace {

/// Nobody has as many extensions.
constexpr qsizetype longestValue = 64 * 1024;

QString schema() {
    return QStringLiteral("org.gnome.shell");
}

QString startedKey() {
    return QStringLiteral("enabled-extensions");
}

QString turnedOffKey() {
    return QStringLiteral("disabled-extensions");
}

bool isPlain(QChar character) {
    return character >= u' ' && character <= u'~' && character != u'\'' && character != u'"' &&
           character != u'\\';
}

/// A text of its own in single quotation marks.
std::optional<QString> textIn(QStringView quoted) {
    if (quoted.size() < 2 || !quoted.startsWith(u'\'') || !quoted.endsWith(u'\''))
        return std::nullopt;
    const QStringView text = quoted.sliced(1, quoted.size() - 2);
    if (!std::all_of(text.begin(), text.end(), isPlain))
        return std::nullopt;
    return text.toString();
}

} // namespace

QString GnomeStartList::settingsProgram() {
    return QStringLiteral("/usr/bin/gsettings");
}

std::optional<QStringList> GnomeStartList::listIn(const QByteArray& value) {
    const QString all = QString::fromUtf8(value).trimmed();
    if (all == u"@as []")
        return QStringList();
    if (!all.startsWith(u"[") || !all.endsWith(u"]") || all.size() < 2)
        return std::nullopt;
    QStringList list;
    // A comma within a text would take it apart into what is none.
    for (const QStringView part : QStringView(all).sliced(1, all.size() - 2).split(u", ")) {
        const auto text = textIn(part);
        if (!text)
            return std::nullopt;
        list.append(*text);
    }
    return list;
}

QString GnomeStartList::valueOf(const QStringList& list) {
    return list.isEmpty() ? QStringLiteral("@as []")
                          : QStringLiteral("['%1']").arg(list.join(QStringLiteral("', '")));
}

GnomeStartList::GnomeStartList(QString program)
    : program_(std::move(program)) {
    process_.setStandardInputFile(QProcess::nullDevice());
    process_.setStandardErrorFile(QProcess::nullDevice());
    connect(&process_, &QProcess::finished, this, &GnomeStartList::finish);
    connect(&process_, &QProcess::readyRead, this, [this] {
        if (process_.bytesAvailable() > longestValue)
            process_.kill();
    });
}

GnomeStartList::~GnomeStartList() {
    // Its end, which Qt brings about, is nothing to go on from.
    process_.disconnect(this);
}

void GnomeStartList::add(const QString& extension) {
    if (isBusy())
        return;
    read(turnedOffKey(), [this, extension](const QStringList& turnedOff) {
        if (turnedOff.contains(extension))
            return;
        read(startedKey(), [this, extension](const QStringList& started) {
            if (!started.contains(extension))
                run({QStringLiteral("set"), schema(), startedKey(),
                     valueOf(started + QStringList(extension))},
                    [] {});
        });
    });
}

void GnomeStartList::read(const QString& key, std::function<void(const QStringList&)> whenRead) {
    run({QStringLiteral("get"), schema(), key}, [this, then = std::move(whenRead)] {
        // It may have come to its end before it could be ended for saying too much.
        const QByteArray value = process_.readAll();
        if (value.size() > longestValue)
            return;
        if (const auto list = listIn(value))
            then(*list);
    });
}

void GnomeStartList::run(const QStringList& arguments, std::function<void()> whenDone) {
    whenDone_ = std::move(whenDone);
    process_.start(program_, arguments);
}

void GnomeStartList::finish(int code, QProcess::ExitStatus status) {
    const auto done = std::exchange(whenDone_, {});
    if (status == QProcess::NormalExit && code == 0 && done)
        done();
}

} // namespace tilewright
