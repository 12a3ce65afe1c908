// A process of its own for tests: one that can be killed, or kept from writing, while it saves.

#include "FaultyFileCalls.h"
#include "SampleLayout.h"

#include <WindowManager/LayoutStore.h>

#include <QFile>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <map>
#include <sys/resource.h>

using namespace tilewright;

namespace {

void print(const QString& line) {
    std::puts(line.toUtf8().constData());
    std::fflush(stdout);
}

/// Prints the ids of the built-in layouts, then those of their zones.
int printBuiltIns() {
    for (const ZoneLayout& layout : ZoneLayout::builtIns())
        print(layout.id.toString(QUuid::WithoutBraces));
    for (const ZoneLayout& layout : ZoneLayout::builtIns()) {
        for (const Zone& zone : layout.zones)
            print(zone.id.toString(QUuid::WithoutBraces));
    }
    return 0;
}

/// Saves one sample layout after the other, printing the number of each that is saved, until it is
/// killed or nobody reads.
int saveForever(const QString& file, int number) {
    LayoutStore store(file);
    if (store.customLayouts().empty())
        store.addCustomLayout(sampleLayout(number));
    for (;; ++number) {
        store.updateCustomLayout(sampleLayout(number));
        print(QString::number(number));
    }
}

/// Saves a sample layout once while the call with the given number meets the fault. Prints which
/// calls there were.
int saveWithFault(const QString& file, int number, FaultyFileCalls::Fault fault, int call) {
    LayoutStore store(file);
    const ZoneLayout layout = sampleLayout(number);
    FaultyFileCalls::arm(fault, call);
    if (store.customLayouts().empty())
        store.addCustomLayout(layout);
    else
        store.updateCustomLayout(layout);
    for (const std::string& name : FaultyFileCalls::disarm())
        print(QString::fromStdString(name));
    return store.customLayouts().front() == layout ? 0 : 1;
}

/// Loads a file of which only the first half can be read, prints how many layouts that makes, and
/// saves one more.
int loadHalf(const QString& file, int number) {
    FaultyFileCalls::arm(FaultyFileCalls::Fault::failReadHalfWay, 0);
    LayoutStore store(file);
    FaultyFileCalls::disarm();
    print(QString::number(store.customLayouts().size()));
    store.addCustomLayout(sampleLayout(number));
    return 0;
}

/// Saves a sample layout once while the system allows no file beyond a number of bytes.
int saveWithSizeLimit(const QString& file, int number, rlim_t bytes) {
    LayoutStore store(file);
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, RLIM_INFINITY};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
        return 2;
    store.updateCustomLayout(sampleLayout(number));
    return store.customLayouts().front() == sampleLayout(number) ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    using FaultyFileCalls::Fault;
    const std::map<std::string, Fault> faults{
        {"none", Fault::none},
        {"fail", Fault::fail},
        {"fail-from-there-on", Fault::failFromThereOn},
        {"fail-half-way", Fault::failHalfWay},
        {"kill-before", Fault::killBefore},
        {"kill-after", Fault::killAfter},
        {"refuse-new-files", Fault::refuseNewFiles},
    };
    const std::string mode = argc > 1 ? argv[1] : "";
    const QString file = argc > 2 ? QFile::decodeName(argv[2]) : QString();
    const auto argument = [&](int index) { return QByteArray(argv[index]).toInt(); };
    if (mode == "built-ins")
        return printBuiltIns();
    if (mode == "save-forever" && argc == 4)
        return saveForever(file, argument(3));
    if (mode == "load-half" && argc == 4)
        return loadHalf(file, argument(3));
    if (mode == "save-with-limit" && argc == 5)
        return saveWithSizeLimit(file, argument(3), static_cast<rlim_t>(argument(4)));
    if (faults.count(mode) != 0 && argc == 5)
        return saveWithFault(file, argument(3), faults.at(mode), argument(4));
    std::fputs("unknown arguments\n", stderr);
    return 2;
}
