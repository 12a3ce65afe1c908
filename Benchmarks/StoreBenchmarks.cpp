// How long the layouts file takes to load and to save, and how large it is.

#include <WindowManager/LayoutCoding.h>
#include <WindowManager/LayoutStore.h>

#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tilewright;

namespace {

/// So many layouts of four zones each, with a few displays assigned.
LayoutCoding::Persisted documentOf(std::int64_t layoutCount) {
    LayoutCoding::Persisted persisted;
    for (std::int64_t i = 0; i < layoutCount; ++i) {
        ZoneLayout layout = ZoneLayout::bentoBox();
        layout.id = QUuid::createUuid();
        layout.name = QStringLiteral("Layout %1").arg(i);
        layout.isBuiltIn = false;
        persisted.customLayouts.push_back(layout);
    }
    for (int display = 1; display <= 3; ++display)
        persisted.assignments[QStringLiteral("display-%1").arg(display)] =
            persisted.customLayouts.front().id;
    return persisted;
}

/// A folder with a layouts file of so many layouts.
class StoreFile {
public:
    explicit StoreFile(std::int64_t layoutCount) {
        QFile file(path());
        (void)file.open(QIODevice::WriteOnly);
        file.write(*LayoutCoding::encode(documentOf(layoutCount)));
    }
    [[nodiscard]] QString path() const { return folder_.filePath(QStringLiteral("layouts.json")); }
    [[nodiscard]] double bytes() const { return static_cast<double>(QFile(path()).size()); }

    /// Has the system forget the file, so that it is read from the disk.
    void evict() const {
        const int file = ::open(QFile::encodeName(path()).constData(), O_RDONLY | O_CLOEXEC);
        ::fdatasync(file);
        ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
        ::close(file);
    }

private:
    QTemporaryDir folder_;
};

void load(benchmark::State& state) {
    const StoreFile file(state.range(0));
    for (auto _ : state) {
        const LayoutStore store(file.path());
        benchmark::DoNotOptimize(store.customLayouts().data());
    }
    state.counters["bytes"] = file.bytes();
}

void save(benchmark::State& state) {
    const StoreFile file(state.range(0));
    LayoutStore store(file.path());
    ZoneLayout layout = store.customLayouts().front();
    int number = 0;
    for (auto _ : state) {
        layout.name = QString::number(++number);
        store.updateCustomLayout(layout);
    }
    state.counters["bytes"] = file.bytes();
}

void encode(benchmark::State& state) {
    const auto document = documentOf(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(LayoutCoding::encode(document));
}

double milliseconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

/// Runs a fresh process that loads the file, or does nothing but start when there is none.
void runProbe(benchmark::State& state, const StoreFile* file) {
    const QByteArray path = file ? QFile::encodeName(file->path()) : QByteArray();
    std::string program = TILEWRIGHT_STORE_START;
    std::string argument = path.toStdString();
    char* arguments[] = {program.data(), file ? argument.data() : nullptr, nullptr};
    double cpuMilliseconds = 0;
    for (auto _ : state) {
        if (file) {
            state.PauseTiming();
            file->evict();
            state.ResumeTiming();
        }
        pid_t process = 0;
        int status = -1;
        rusage usage{};
        if (posix_spawn(&process, program.c_str(), nullptr, nullptr, arguments, environ) != 0 ||
            wait4(process, &status, 0, &usage) != process || status != 0) {
            state.SkipWithError("the process failed");
            return;
        }
        cpuMilliseconds += milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
    }
    // What the process itself used, whatever else the machine did meanwhile.
    state.counters["cpu_ms"] =
        benchmark::Counter(cpuMilliseconds, benchmark::Counter::kAvgIterations);
}

void startWithoutStore(benchmark::State& state) {
    runProbe(state, nullptr);
}

void startToLoadedStore(benchmark::State& state) {
    const StoreFile file(state.range(0));
    runProbe(state, &file);
}

} // namespace

BENCHMARK(load)->Arg(5)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(save)->Arg(5)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(encode)->Arg(5)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(startWithoutStore)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(startToLoadedStore)
    ->Arg(5)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
