// make_iconset DRAWING.svg FOLDER.iconset: draws the program's icon at every size that macOS shows
// it in, under the names that iconutil expects.

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace {

/// In points; each is drawn for displays of one and of two pixels a point.
constexpr std::array sides{16, 32, 128, 256, 512};

bool draw(QSvgRenderer& drawing, int side, const QString& path) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.end();
    return image.save(path, "PNG");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("make_iconset DRAWING.svg FOLDER.iconset\n", stderr);
        return EXIT_FAILURE;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    const QDir folder(QString::fromLocal8Bit(argv[2]));
    bool isDone = drawing.isValid() && folder.mkpath(QStringLiteral("."));
    for (const int side : sides) {
        const QString name = folder.filePath(QStringLiteral("icon_%1x%1%2.png").arg(side));
        isDone = isDone && draw(drawing, side, name.arg(QString())) &&
                 draw(drawing, 2 * side, name.arg(QStringLiteral("@2x")));
    }
    if (!isDone)
        std::fprintf(stderr, "make_iconset: cannot draw %s into %s\n", argv[1], argv[2]);
    return isDone ? EXIT_SUCCESS : EXIT_FAILURE;
}
