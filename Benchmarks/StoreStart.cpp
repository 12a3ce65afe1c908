// A process that loads a store and ends; without an argument it only starts.

#include <WindowManager/LayoutStore.h>

#include <QFile>

int main(int argc, char** argv) {
    if (argc < 2)
        return 0;
    const tilewright::LayoutStore store(QFile::decodeName(argv[1]));
    return store.customLayouts().empty() ? 1 : 0;
}
