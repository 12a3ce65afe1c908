#include "Succession.h"

#include "TerminationSignals.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <qlogging.h>
#include <system_error>
#include <unistd.h>

namespace tilewright {

namespace {

constexpr char thisProgram[] = "/proc/self/exe";

std::atomic<Succession*> current = nullptr;

/// As long as fatal messages are listened to; set before they are.
std::atomic<QtMessageHandler> usualHandler = nullptr;

/// By its own name, which the system shows: the link's would be shown otherwise.
std::string pathOfThisProgram() {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::read_symlink(thisProgram, error);
    return error ? std::string(thisProgram) : path.string();
}

/// As `MainLoop::now()` has it, before there is a loop.
Legacy::Interval now() {
    return std::chrono::duration_cast<Legacy::Interval>(
        std::chrono::steady_clock::now().time_since_epoch());
}

void handOverAtFatalMessage(QtMsgType type, const QMessageLogContext& context,
                            const QString& message) {
    // Qt aborts the process as soon as it has been told.
    if (type == QtFatalMsg)
        Succession::handOver();
    usualHandler.load()(type, context, message);
}

} // namespace

Succession::Succession(std::string name, const Legacy& former)
    : name_(std::move(name))
    , program_(pathOfThisProgram())
    , process_(::getpid())
    , birth_(now())
    , legacy_(former) {
    current = this;
}

Succession::~Succession() {
    current = nullptr;
}

std::shared_ptr<void> Succession::throughStart() {
    usualHandler = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(handOverAtFatalMessage);
    return {nullptr, [](void*) { qInstallMessageHandler(usualHandler); }};
}

std::shared_ptr<void> Succession::begin() {
    struct Life {
        explicit Life(Succession& succession)
            : heir(succession.legacy_.session, [&succession](const auto& session) {
                const std::lock_guard lock(succession.mutex_);
                succession.legacy_.session = session;
            }) {}
        ~Life() { current = nullptr; }

        KeepAwakeHeir heir;
    };
    return std::make_shared<Life>(*this);
}

void Succession::handOver() {
    Succession* succession = current;
    if (succession && succession->process_ == ::getpid() && !TerminationSignals::hasCome())
        succession->executeAnew();
}

void Succession::executeAnew() {
    std::optional<Legacy> next;
    {
        const std::lock_guard lock(mutex_);
        next = legacy_.after(now() - birth_);
    }
    if (!next)
        return;
    std::string name = name_;
    std::string argument = next->asArgument();
    const std::array<char*, 3> arguments{name.data(), argument.data(), nullptr};
    // What somebody else's code has opened without saying so does not go along.
    constexpr unsigned firstOther = STDERR_FILENO + 1;
    ::close_range(firstOther, ~0U, CLOSE_RANGE_CLOEXEC);
    ::execv(program_.c_str(), arguments.data());
    // Removed since, as by an update that has not been finished yet.
    ::execv(thisProgram, arguments.data());
}

} // namespace tilewright

/// In place of the C library's, for every library of this process: the dynamic linker looks into
/// the program first.
extern "C" [[gnu::visibility("default")]] void _exit(int code) {
    tilewright::Succession::handOver();
    std::_Exit(code);
}
