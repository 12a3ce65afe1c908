// Reads documents and writes each again as the program would save it.
//
// In: each document after its length in four bytes, in the machine's order. Out: the same of what
// was written, or a length of all ones for a document that is no layouts file.

#include <WindowManager/LayoutCoding.h>

#include <cstdint>
#include <cstdio>

using namespace tilewright;

int main() {
    constexpr std::uint32_t refused = 0xFFFFFFFF;
    std::uint32_t length = 0;
    while (std::fread(&length, sizeof length, 1, stdin) == 1) {
        QByteArray document(static_cast<qsizetype>(length), Qt::Uninitialized);
        if (std::fread(document.data(), 1, length, stdin) != length)
            return 1;
        const auto persisted = LayoutCoding::decodePersisted(document);
        const QByteArray written =
            persisted ? LayoutCoding::encode(*persisted).value_or(QByteArray()) : QByteArray();
        const std::uint32_t answer =
            persisted ? static_cast<std::uint32_t>(written.size()) : refused;
        std::fwrite(&answer, sizeof answer, 1, stdout);
        std::fwrite(written.constData(), 1, static_cast<std::size_t>(written.size()), stdout);
    }
    return 0;
}
