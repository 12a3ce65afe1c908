#pragma once

#include <QRect>
#include <QSize>
#include <QString>
#include <vector>
#include <wayland-server.h>

namespace tilewright::testing {

/// A display of a fake compositor.
struct FakeOutput {
    QString name = QStringLiteral("DP-1");
    QString description = QStringLiteral("A display");
    QString make = QStringLiteral("Maker");
    QString model = QStringLiteral("Model");
    QRect frame{0, 0, 1920, 1080};
    QSize mode{1920, 1080};
    int transform = 0;
    int wholeScale = 1;
};

/// Offers such a display to clients for as long as it lives.
class FakeOutputGlobal {
public:
    FakeOutputGlobal(wl_display* display, std::uint32_t version, FakeOutput values);
    ~FakeOutputGlobal();
    FakeOutputGlobal(const FakeOutputGlobal&) = delete;
    FakeOutputGlobal& operator=(const FakeOutputGlobal&) = delete;

    [[nodiscard]] const FakeOutput& values() const { return values_; }
    /// Takes new values and tells them.
    void change(const FakeOutput& values);
    /// Tells the logical geometry, too, through an object made for one of this display's.
    void addLogical(wl_client* client, std::uint32_t version, std::uint32_t id);

    /// The one for which a client has the object; null once it is gone.
    [[nodiscard]] static FakeOutputGlobal* of(wl_resource* output);

private:
    void bind(wl_client* client, std::uint32_t version, std::uint32_t id);
    void tell(wl_resource* output) const;
    void tellLogical(wl_resource* logical) const;

    FakeOutput values_;
    std::vector<wl_resource*> outputs_;
    std::vector<wl_resource*> logicals_;
    wl_global* global_;
};

} // namespace tilewright::testing
