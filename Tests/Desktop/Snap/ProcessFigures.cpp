#include "ProcessFigures.h"

#include <XClient.h>

#include <QDir>
#include <QFile>
#include <algorithm>
#include <ostream>
#include <unistd.h>
#include <xcb/res.h>

namespace tilewright::testing {
namespace {

QString inProc(pid_t process, const char* name) {
    return QStringLiteral("/proc/%1/%2").arg(process).arg(QString::fromLatin1(name));
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The sum of the numbers in the lines that begin with the key.
long sumOf(const QByteArray& text, const QByteArray& key) {
    long sum = 0;
    const auto lines = text.split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(key))
            sum += line.mid(key.size()).simplified().split(' ').constFirst().toLong();
    }
    return sum;
}

std::string atomName(xcb_connection_t* connection, xcb_atom_t atom) {
    const XReply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, atom), nullptr));
    if (!reply)
        return {};
    return {xcb_get_atom_name_name(reply.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

/// One resource of each connection of the process.
std::vector<std::uint32_t> connectionsOf(xcb_connection_t* connection, pid_t process) {
    const xcb_res_client_id_spec_t all{XCB_NONE, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const XReply<xcb_res_query_client_ids_reply_t> reply(xcb_res_query_client_ids_reply(
        connection, xcb_res_query_client_ids(connection, 1, &all), nullptr));
    std::vector<std::uint32_t> found;
    if (!reply)
        return found;
    for (auto ids = xcb_res_query_client_ids_ids_iterator(reply.get()); ids.rem > 0;
         xcb_res_client_id_value_next(&ids)) {
        if (xcb_res_client_id_value_value_length(ids.data) > 0 &&
            *xcb_res_client_id_value_value(ids.data) == static_cast<std::uint32_t>(process))
            found.push_back(ids.data->spec.client);
    }
    return found;
}

} // namespace

ProcessFigures processFigures(pid_t process) {
    ProcessFigures figures;
    const QByteArray memory = readAll(inProc(process, "smaps_rollup"));
    figures.residentKiB = sumOf(memory, "Rss:");
    figures.privateKiB = sumOf(memory, "Private_Clean:") + sumOf(memory, "Private_Dirty:");
    figures.anonymousKiB = sumOf(memory, "Anonymous:");
    figures.sharedMemoryKiB = sumOf(readAll(inProc(process, "status")), "RssShmem:");
    figures.fileDescriptors =
        static_cast<int>(QDir(inProc(process, "fd"))
                             .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
                             .size());
    const QDir tasks(inProc(process, "task"));
    const auto threads = tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& thread : threads) {
        const QByteArray status = readAll(tasks.filePath(thread) + QStringLiteral("/status"));
        figures.voluntarySwitches += sumOf(status, "voluntary_ctxt_switches:");
        // Nanoseconds on a processor come first.
        const QByteArray schedule = readAll(tasks.filePath(thread) + QStringLiteral("/schedstat"));
        figures.cpuMicroseconds += schedule.split(' ').constFirst().toLong() / 1000;
    }
    return figures;
}

XResources xResources(const QString& display, pid_t process) {
    XResources resources;
    const XClient asking(display);
    if (asking.isConnected()) {
        xcb_connection_t* connection = asking.xcb();
        const XReply<xcb_res_query_version_reply_t> version(xcb_res_query_version_reply(
            connection, xcb_res_query_version(connection, 1, 2), nullptr));
        for (const std::uint32_t client : connectionsOf(connection, process)) {
            const XReply<xcb_res_query_client_resources_reply_t> reply(
                xcb_res_query_client_resources_reply(
                    connection, xcb_res_query_client_resources(connection, client), nullptr));
            if (!reply)
                continue;
            for (auto types = xcb_res_query_client_resources_types_iterator(reply.get());
                 types.rem > 0; xcb_res_type_next(&types))
                resources[atomName(connection, types.data->resource_type)] += types.data->count;
        }
    }
    return resources;
}

bool Holdings::isWithin(const Holdings& bound) const {
    // More than the views have.
    constexpr long mostPointerShapes = 8;
    return fileDescriptors <= bound.fileDescriptors && windows <= bound.windows &&
           std::ranges::all_of(resources, [&](const auto& held) {
               if (held.first == "CURSOR")
                   return held.second <= mostPointerShapes;
               const auto found = bound.resources.find(held.first);
               return found != bound.resources.end() && held.second <= found->second;
           });
}

void PrintTo(const Holdings& holdings, std::ostream* out) {
    *out << holdings.fileDescriptors << " descriptors, " << holdings.windows << " windows";
    for (const auto& [type, count] : holdings.resources)
        *out << ", " << count << " " << type;
}

} // namespace tilewright::testing
