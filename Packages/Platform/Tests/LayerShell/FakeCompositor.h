#pragma once

#include "FakeOutput.h"
#include "FakeSurface.h"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <array>
#include <memory>
#include <vector>
#include <wayland-server.h>

namespace tilewright::testing {

/// A compositor in this very process and thread, which shows nothing and remembers everything.
class FakeCompositor final : public QObject {
    Q_OBJECT

public:
    /// What it offers, by versions; 0 leaves it out.
    struct Offers {
        std::uint32_t layerShell = 3;
        std::uint32_t viewporter = 1;
        std::uint32_t fractionalScale = 1;
        std::uint32_t outputManager = 3;
        std::uint32_t keyStates = 5;
        std::uint32_t idleInhibition = 1;
        std::uint32_t output = 4;
    };

    /// Listens at a socket of this name in the folder.
    FakeCompositor(const QString& folder, const QString& name, Offers offers);
    /// With everything that it can offer.
    FakeCompositor(const QString& folder, const QString& name);
    ~FakeCompositor() override;

    /// Whether surfaces are told their size as soon as they ask.
    bool configures = true;
    /// Whether pictures are released as soon as they have been copied.
    bool releases = true;
    /// What each new surface is told of pixels per unit; nothing with 0.
    double preferredScale = 0;

    void addOutput(const FakeOutput& output);
    /// Tells of new values of the display with the same name.
    void changeOutput(const FakeOutput& output);
    void removeOutput(const QString& name);
    /// Presses and releases keys by their numbers.
    void setKey(std::uint32_t key, std::uint32_t state);
    /// Ends every connection for breaking a rule.
    void blame();

    /// The surfaces with a role, in the order in which they got it.
    [[nodiscard]] std::vector<FakeSurface*> layers() const;
    /// The only surface with a role; null where there is another number of them.
    [[nodiscard]] FakeSurface* layer() const;
    [[nodiscard]] int connections() const { return connections_; }
    /// How many wishes there are that the displays stay on, by surfaces that are shown and were so
    /// when the wish came: some compositors look only then.
    [[nodiscard]] int effectiveInhibitors() const;
    [[nodiscard]] const FakeOutput* output(const QString& name) const;
    /// How many of the pictures that were ever shown are still allocated.
    [[nodiscard]] int picturesAlive() const { return static_cast<int>(pictures_.size()); }
    /// Notes that a surface was given this picture.
    void notePicture(wl_resource* buffer);
    void makeSurface(wl_client* client, std::uint32_t id);
    void makeInhibitor(wl_client* client, std::uint32_t id, FakeSurface* surface);

    /// Sends what is to go out.
    void flush();

private:
    struct Inhibitor;
    struct Picture;

    void offerEverything(const Offers& offers);
    void bindCompositor(wl_client* client, std::uint32_t version, std::uint32_t id);
    void bindLayerShell(wl_client* client, std::uint32_t version, std::uint32_t id);
    void bindViewporter(wl_client* client, std::uint32_t version, std::uint32_t id);
    void bindFractionalScale(wl_client* client, std::uint32_t version, std::uint32_t id);
    void bindOutputManager(wl_client* client, std::uint32_t version, std::uint32_t id);
    void bindKeyStates(wl_client* client, std::uint32_t version, std::uint32_t id);
    void bindIdleInhibition(wl_client* client, std::uint32_t version, std::uint32_t id);
    [[nodiscard]] FakeOutputGlobal* found(const QString& name) const;

    wl_display* display_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::vector<std::unique_ptr<FakeSurface>> surfaces_;
    std::vector<std::unique_ptr<FakeOutputGlobal>> outputs_;
    std::vector<std::unique_ptr<Inhibitor>> inhibitors_;
    std::vector<std::unique_ptr<Picture>> pictures_;
    std::vector<wl_resource*> keyStates_;
    std::array<std::uint32_t, 8> keys_{};
    std::uint32_t outputVersion_ = 4;
    int connections_ = 0;
    wl_listener clientCreated_{};
};

} // namespace tilewright::testing
