#include "X11ReducedMotion.h"

#include "X11Properties.h"
#include "XSettings.h"

namespace tilewright {

X11ReducedMotion::X11ReducedMotion(X11Connection& connection, X11EventSelection& selection)
    : connection_(connection)
    , selection_(selection)
    , owner_(connection,
             connection.intern("_XSETTINGS_S" + QByteArray::number(connection.screenNumber()))) {
    connect(&owner_, &X11SelectionOwner::changed, this, [this] { follow(owner_.window()); });
    connect(&connection_, &X11Connection::answersAgain, this, &X11ReducedMotion::read);
    follow(owner_.window());
}

void X11ReducedMotion::follow(xcb_window_t manager) {
    manager_ = manager;
    // Before the new ones: the next manager's window may have the number of the former one's, of
    // which the server has forgotten what was selected.
    interest_.reset();
    propertyListener_.reset();
    if (manager_ != XCB_NONE) {
        interest_ = selection_.select(manager_, XCB_EVENT_MASK_PROPERTY_CHANGE);
        propertyListener_ = connection_.listen(
            X11EventFilter::window(manager_), [this](const xcb_generic_event_t& event) {
                if (eventType(event) == XCB_PROPERTY_NOTIFY &&
                    eventAs<xcb_property_notify_event_t>(event).atom ==
                        connection_.atom(X11Atom::xsettingsSettings))
                    read();
            });
    }
    read();
}

void X11ReducedMotion::read() {
    std::optional<bool> wish;
    if (manager_ != XCB_NONE) {
        // All desktops' settings together take a few kilobytes.
        constexpr std::uint32_t bound = 0x4000;
        const QByteArray settings = takeBytes(
            connection_, requestProperty(connection_, manager_, X11Atom::xsettingsSettings, bound));
        // No answer says nothing of what the user wishes.
        if (connection_.isStuck())
            return;
        if (const auto areEnabled =
                integerXSetting(settings, QByteArrayLiteral("Gtk/EnableAnimations")))
            wish = *areEnabled == 0;
    }
    if (wish == wish_)
        return;
    wish_ = wish;
    Q_EMIT changed();
}

} // namespace tilewright
