#pragma once

#include <XClient.h>

#include <QByteArray>
#include <QString>
#include <QtEndian>

namespace tilewright::testing {

/// A settings manager that tells one thing: whether animations are wanted. It ends as when it
/// crashes.
class SettingsManager {
public:
    explicit SettingsManager(const QString& display)
        : client_(display)
        , window_(xcb_generate_id(client_.xcb())) {
        xcb_create_window(client_.xcb(), 0, window_, client_.root(), -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(client_.xcb(), window_, client_.atom("_XSETTINGS_S0"),
                                XCB_CURRENT_TIME);
        client_.sync();
    }

    /// Keeps the server from answering anybody else.
    void holdServer() {
        xcb_grab_server(client_.xcb());
        client_.sync();
    }
    void letGoOfServer() {
        xcb_ungrab_server(client_.xcb());
        client_.sync();
    }
    [[nodiscard]] xcb_window_t window() const { return window_; }
    void setAnimations(qint32 areEnabled) {
        ++serial_;
        const QByteArray name("Gtk/EnableAnimations");
        const QByteArray property = QByteArray(4, '\0') + number<quint32>(serial_) +
                                    number<quint32>(1) + QByteArray(2, '\0') +
                                    number(static_cast<quint16>(name.size())) + name +
                                    number<quint32>(serial_) + number(areEnabled);
        const xcb_atom_t settings = client_.atom("_XSETTINGS_SETTINGS");
        xcb_change_property(client_.xcb(), XCB_PROP_MODE_REPLACE, window_, settings, settings, 8,
                            static_cast<uint32_t>(property.size()), property.constData());
        client_.sync();
    }

private:
    template<class Number>
    static QByteArray number(Number value) {
        const Number ordered = qToLittleEndian(value);
        return {static_cast<const char*>(static_cast<const void*>(&ordered)), sizeof(ordered)};
    }

    XClient client_;
    xcb_window_t window_;
    quint32 serial_ = 0;
};

} // namespace tilewright::testing
