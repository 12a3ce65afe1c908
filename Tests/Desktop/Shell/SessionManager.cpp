// A session manager: SessionManager REPORT-FILE. Prints its address, for SESSION_MANAGER, and
// notes in the file, a line each, what its clients tell: "registered", "restarts N" with the
// client's wish for the next session, "saved", "closed". For each line on its standard input it
// does what a desktop does there: "log out" has all clients save their state and then, once all
// have, tells them to end; "cancel" has them save and then tells them that all goes on.

#include <QCoreApplication>
#include <QFile>
#include <QSocketNotifier>
#include <QTextStream>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <X11/ICE/ICElib.h>
#include <X11/ICE/ICEutil.h>
#include <X11/SM/SMlib.h>

namespace {

class SessionManager;

struct Client {
    SessionManager* manager = nullptr;
    SmsConn connection = nullptr;
};

class SessionManager {
public:
    explicit SessionManager(const QString& reportFile)
        : report_(reportFile) {
        static_cast<void>(report_.open(QIODevice::WriteOnly | QIODevice::Append));
    }

    /// Takes connections on sockets of its own. False where that is not possible.
    bool listen() {
        std::array<char, 256> error{};
        std::array<char, 2> vendor{"t"};
        std::array<char, 2> release{"1"};
        const auto admitsAll = [](char*) -> Bool { return True; };
        if (!SmsInitialize(vendor.data(), release.data(), &SessionManager::clientArrived, this,
                           admitsAll, static_cast<int>(error.size()), error.data()))
            return false;
        int count = 0;
        IceListenObj* sockets = nullptr;
        if (!IceListenForConnections(&count, &sockets, static_cast<int>(error.size()),
                                     error.data()))
            return false;
        for (int i = 0; i < count; ++i) {
            IceListenObj socket = sockets[i]; // NOLINT: the library's array
            IceSetHostBasedAuthProc(socket, admitsAll);
            auto notifier = std::make_unique<QSocketNotifier>(IceGetListenConnectionNumber(socket),
                                                              QSocketNotifier::Read);
            QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                             [this, socket] { accept(socket); });
            notifiers_.push_back(std::move(notifier));
        }
        std::puts(IceComposeNetworkIdList(count, sockets));
        std::fflush(stdout);
        return true;
    }

    void perform(const QByteArray& line) {
        isLoggingOut_ = line == "log out";
        waitingFor_ = clients_.size();
        for (const auto& client : clients_)
            SmsSaveYourself(client->connection, SmSaveBoth, isLoggingOut_ ? True : False,
                            SmInteractStyleNone, False);
    }

private:
    void note(const QByteArray& line) {
        report_.write(line + '\n');
        report_.flush();
    }

    void accept(IceListenObj socket) {
        IceAcceptStatus status = IceAcceptFailure;
        IceConn connection = IceAcceptConnection(socket, &status);
        if (!connection)
            return;
        auto notifier = std::make_unique<QSocketNotifier>(IceConnectionNumber(connection),
                                                          QSocketNotifier::Read);
        QSocketNotifier* raw = notifier.get();
        QObject::connect(raw, &QSocketNotifier::activated, raw, [connection, raw] {
            if (IceProcessMessages(connection, nullptr, nullptr) != IceProcessMessagesSuccess)
                raw->setEnabled(false);
        });
        notifiers_.push_back(std::move(notifier));
    }

    static Status clientArrived(SmsConn connection, SmPointer data, unsigned long* mask,
                                SmsCallbacks* callbacks, char** /*failureReason*/) {
        auto* manager = static_cast<SessionManager*>(data);
        manager->clients_.push_back(std::make_unique<Client>(Client{manager, connection}));
        SmPointer client = manager->clients_.back().get();
        *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
                SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask |
                SmsSaveYourselfDoneProcMask | SmsCloseConnectionProcMask |
                SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask | SmsGetPropertiesProcMask;
        callbacks->register_client = {&SessionManager::registered, client};
        callbacks->interact_request = {[](SmsConn, SmPointer, int) {}, client};
        callbacks->interact_done = {[](SmsConn, SmPointer, Bool) {}, client};
        callbacks->save_yourself_request = {[](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {},
                                            client};
        callbacks->save_yourself_phase2_request = {
            [](SmsConn peer, SmPointer) { SmsSaveYourselfPhase2(peer); }, client};
        callbacks->save_yourself_done = {&SessionManager::saved, client};
        callbacks->close_connection = {&SessionManager::closed, client};
        callbacks->set_properties = {&SessionManager::propertiesSet, client};
        callbacks->delete_properties = {[](SmsConn, SmPointer, int, char**) {}, client};
        callbacks->get_properties = {
            [](SmsConn peer, SmPointer) { SmsReturnProperties(peer, 0, nullptr); }, client};
        return 1;
    }

    static Status registered(SmsConn connection, SmPointer data, char* previousID) {
        SmsRegisterClientReply(connection,
                               previousID ? previousID : SmsGenerateClientID(connection));
        // As the protocol wants it of a client's first state.
        if (!previousID)
            SmsSaveYourself(connection, SmSaveLocal, False, SmInteractStyleNone, False);
        static_cast<Client*>(data)->manager->note("registered");
        return 1;
    }

    static void propertiesSet(SmsConn, SmPointer data, int count, SmProp** properties) {
        for (int i = 0; i < count; ++i) {
            SmProp* property = properties[i]; // NOLINT: the library's array
            if (QByteArray(property->name) == SmRestartStyleHint)
                static_cast<Client*>(data)->manager->note(
                    "restarts " +
                    QByteArray::number(*static_cast<unsigned char*>(property->vals[0].value)));
            SmFreeProperty(property);
        }
        std::free(properties); // NOLINT: the library allocated it
    }

    static void saved(SmsConn connection, SmPointer data, Bool /*success*/) {
        SessionManager& manager = *static_cast<Client*>(data)->manager;
        manager.note("saved");
        if (manager.waitingFor_ == 0) {
            SmsSaveComplete(connection);
            return;
        }
        if (--manager.waitingFor_ > 0)
            return;
        for (const auto& client : manager.clients_) {
            if (manager.isLoggingOut_)
                SmsDie(client->connection);
            else
                SmsShutdownCancelled(client->connection);
        }
    }

    static void closed(SmsConn connection, SmPointer data, int count, char** reasons) {
        auto* client = static_cast<Client*>(data);
        SessionManager& manager = *client->manager;
        SmFreeReasons(count, reasons);
        IceConn ice = SmsGetIceConnection(connection);
        SmsCleanUp(connection);
        IceSetShutdownNegotiation(ice, False);
        IceCloseConnection(ice);
        std::erase_if(manager.clients_, [&](const auto& each) { return each.get() == client; });
        manager.note("closed");
    }

    QFile report_;
    std::vector<std::unique_ptr<QSocketNotifier>> notifiers_;
    std::vector<std::unique_ptr<Client>> clients_;
    std::size_t waitingFor_ = 0;
    bool isLoggingOut_ = false;
};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc < 2)
        return EXIT_FAILURE;
    IceSetIOErrorHandler([](IceConn) {});
    SessionManager manager(QCoreApplication::arguments()[1]);
    if (!manager.listen())
        return EXIT_FAILURE;
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly | QIODevice::Unbuffered))
        return EXIT_FAILURE;
    const QSocketNotifier commands(0, QSocketNotifier::Read);
    QObject::connect(&commands, &QSocketNotifier::activated, [&] {
        const QByteArray line = input.readLine();
        if (line.isEmpty())
            QCoreApplication::exit();
        else
            manager.perform(line.trimmed());
    });
    return QCoreApplication::exec();
}
