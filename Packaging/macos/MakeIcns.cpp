// make_icns DRAWING.svg ICON.icns: draws the program's icon at every size that macOS shows it in.

#include <QBuffer>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSaveFile>
#include <QSvgRenderer>
#include <QtEndian>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace {

struct Entry {
    /// The type of an entry that holds a PNG picture of that many pixels a side.
    const char* type;
    int side;
};

constexpr std::array entries{
    Entry{"icp4", 16},  Entry{"icp5", 32},   Entry{"ic11", 32},  Entry{"ic12", 64},
    Entry{"ic07", 128}, Entry{"ic08", 256},  Entry{"ic13", 256}, Entry{"ic09", 512},
    Entry{"ic14", 512}, Entry{"ic10", 1024},
};

/// A type and a length, which counts itself, before every part of the file.
QByteArray header(const char* type, qsizetype contentLength) {
    const auto length = qToBigEndian(static_cast<quint32>(contentLength + 8));
    return QByteArray(type, 4) + QByteArray(reinterpret_cast<const char*>(&length), 4);
}

QByteArray draw(QSvgRenderer& drawing, int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.end();
    QByteArray encoded;
    QBuffer buffer(&encoded);
    image.save(&buffer, "PNG");
    return encoded;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("make_icns DRAWING.svg ICON.icns\n", stderr);
        return EXIT_FAILURE;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    if (!drawing.isValid()) {
        std::fprintf(stderr, "make_icns: cannot read %s\n", argv[1]);
        return EXIT_FAILURE;
    }
    QByteArray content;
    for (const Entry& entry : entries) {
        const QByteArray picture = draw(drawing, entry.side);
        content += header(entry.type, picture.size()) + picture;
    }
    QSaveFile file(QString::fromLocal8Bit(argv[2]));
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(header("icns", content.size()) + content) < 0 || !file.commit()) {
        std::fprintf(stderr, "make_icns: cannot write %s\n", argv[2]);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
