#include "DisplayFiles.h"

#include <PrivateHome.h>
#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace tilewright::testing {

void writeDisplaysOfKwin5(const QString& home, const std::vector<QRect>& frames,
                          const std::vector<double>& scales, QSize pixels, std::size_t primary) {
    QJsonArray outputs;
    QByteArray connectors;
    for (const QRect& frame : frames) {
        const int number = int(outputs.size());
        const QString connector = QStringLiteral("Virtual-%1").arg(number);
        connectors += connector.toLatin1();
        outputs.append(QJsonObject{
            {QStringLiteral("id"), connector},
            {QStringLiteral("metadata"), QJsonObject{{QStringLiteral("name"), connector}}},
            {QStringLiteral("enabled"), true},
            {QStringLiteral("rotation"), 1},
            {QStringLiteral("mode"),
             QJsonObject{{QStringLiteral("refresh"), 60},
                         {QStringLiteral("size"),
                          QJsonObject{{QStringLiteral("width"), pixels.width()},
                                      {QStringLiteral("height"), pixels.height()}}}}},
            {QStringLiteral("primary"), std::size_t(number) == primary},
            {QStringLiteral("scale"), scales[std::size_t(number)]},
            {QStringLiteral("pos"),
             QJsonObject{{QStringLiteral("x"), frame.x()}, {QStringLiteral("y"), frame.y()}}}});
    }
    // Which displays it is of, its name says.
    const QByteArray name = QCryptographicHash::hash(connectors, QCryptographicHash::Md5).toHex();
    writeFile(home + QStringLiteral("/.local/share/kscreen/") + QString::fromLatin1(name),
              QJsonDocument(outputs).toJson());
}

void writeDisplaysOfKwin6(const QString& home, const std::vector<QRect>& frames,
                          const std::vector<double>& scales, QSize pixels, std::size_t primary) {
    QJsonArray outputs;
    QJsonArray places;
    for (const QRect& frame : frames) {
        const int number = int(outputs.size());
        outputs.append(QJsonObject{
            {QStringLiteral("connectorName"), QStringLiteral("X11-%1").arg(number)},
            {QStringLiteral("mode"), QJsonObject{{QStringLiteral("width"), pixels.width()},
                                                 {QStringLiteral("height"), pixels.height()},
                                                 {QStringLiteral("refreshRate"), 60000}}},
            {QStringLiteral("scale"), scales[std::size_t(number)]}});
        places.append(QJsonObject{
            {QStringLiteral("enabled"), true},
            {QStringLiteral("outputIndex"), number},
            {QStringLiteral("priority"), std::size_t(number) == primary ? 1 : number + 2},
            {QStringLiteral("position"),
             QJsonObject{{QStringLiteral("x"), frame.x()}, {QStringLiteral("y"), frame.y()}}}});
    }
    const QJsonObject setup{{QStringLiteral("lidClosed"), false},
                            {QStringLiteral("outputs"), places}};
    const auto part = [](const char* name, const QJsonArray& data) {
        return QJsonObject{{QStringLiteral("name"), QLatin1String(name)},
                           {QStringLiteral("data"), data}};
    };
    writeFile(home + QStringLiteral("/.config/kwinoutputconfig.json"),
              QJsonDocument(QJsonArray{part("outputs", outputs), part("setups", QJsonArray{setup})})
                  .toJson());
}

} // namespace tilewright::testing
