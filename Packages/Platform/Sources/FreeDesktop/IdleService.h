#pragma once

#include <QString>
#include <QStringList>
#include <QVariantList>
#include <vector>

namespace tilewright {

/// A service on a bus that can be asked to keep the session from idling: where it is found, how it
/// is asked, and how what it grants is given back.
struct IdleService {
    enum class Bus { session, system };
    /// What stands for a granted inhibition.
    enum class Grant {
        /// A number, to be named when giving back.
        cookie,
        /// A request object of the portal, which answers later and is closed when giving back.
        request,
        /// A file descriptor, held open for as long as the inhibition is wanted.
        descriptor,
    };

    Bus bus = Bus::session;
    Grant grant = Grant::cookie;
    QString name;
    /// The object, under each of the paths it is known by; the first that exists counts.
    QStringList paths;
    QString interface;
    /// The arguments of its Inhibit method.
    QVariantList (*arguments)(const QString& application, const QString& reason) = nullptr;
    /// The method that gives a cookie back.
    QString release;
};

/// The services that the desktops of Linux are known to offer.
[[nodiscard]] const std::vector<IdleService>& idleServices();

} // namespace tilewright
