#include "X11MotionWish.h"

#include "X11Properties.h"
#include "XSettings.h"

#include <xcb/xfixes.h>

namespace tilewright {

X11MotionWish::X11MotionWish(X11Connection& connection, X11EventSelection& selection)
    : connection_(connection)
    , selection_(selection)
    , managerSelection_(
          connection.intern("_XSETTINGS_S" + QByteArray::number(connection.screenNumber()))) {
    if (connection_.xfixes().isPresent) {
        selectionListener_ = connection_.listen(
            X11EventFilter::type(static_cast<std::uint8_t>(connection_.xfixes().firstEvent +
                                                           XCB_XFIXES_SELECTION_NOTIFY)),
            [this](const xcb_generic_event_t& event) {
                const auto& notice = eventAs<xcb_xfixes_selection_notify_event_t>(event);
                if (notice.selection == managerSelection_)
                    follow(notice.owner);
            });
        xcb_xfixes_select_selection_input(
            connection_.xcb(), connection_.root(), managerSelection_,
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    }
    // After the selection of events: nothing is missed between the two.
    connect(&connection_, &X11Connection::answersAgain, this, &X11MotionWish::findManager);
    findManager();
}

void X11MotionWish::findManager() {
    const auto owner = connection_.reply<xcb_get_selection_owner_reply_t>(
        xcb_get_selection_owner(connection_.xcb(), managerSelection_));
    if (!owner)
        return;
    if (owner->owner != manager_)
        follow(owner->owner);
    else
        read();
}

void X11MotionWish::follow(xcb_window_t manager) {
    manager_ = manager;
    if (manager_ == XCB_NONE) {
        interest_.reset();
        propertyListener_.reset();
    } else {
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

void X11MotionWish::read() {
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
