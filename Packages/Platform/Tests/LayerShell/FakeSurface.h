#pragma once

#include <QByteArray>
#include <QImage>
#include <QRegion>
#include <QSize>
#include <QString>
#include <memory>
#include <vector>
#include <wayland-server.h>

namespace tilewright::testing {

class FakeCompositor;

/// A surface as its client has made it.
class FakeSurface {
public:
    FakeSurface(FakeCompositor& compositor, wl_resource* resource);
    ~FakeSurface();
    FakeSurface(const FakeSurface&) = delete;
    FakeSurface& operator=(const FakeSurface&) = delete;

    // What the client has asked for, if it has.
    QByteArray purpose;
    QString outputName;
    std::uint32_t layer = 0;
    std::uint32_t anchor = 0;
    QSize wishedSize;
    int exclusiveZone = 0;
    std::uint32_t keyboard = 99;
    bool letsInputThrough = false;

    // What it shows.
    QImage picture;
    QSize destination;
    int bufferScale = 1;
    /// What it has said to have changed with the last picture, in pixels.
    QRegion changed;
    int pictures = 0;

    [[nodiscard]] bool hasRole() const { return role_ != nullptr; }
    [[nodiscard]] bool isShown() const { return !picture.isNull(); }
    /// Whether its picture is more than one transparent pixel.
    [[nodiscard]] bool isSeen() const {
        return isShown() && (picture.size() != QSize(1, 1) || qAlpha(picture.pixel(0, 0)) != 0);
    }
    /// Pictures that the client may not paint into now.
    [[nodiscard]] int picturesHeld() const { return static_cast<int>(held_.size()); }

    void configure(QSize size);
    void close();
    void prefer(double pixelsPerUnit);
    /// Gives back the picture that is held the longest.
    void releaseOne();

    /// Makes a layer surface of it.
    void takeRole(std::uint32_t version, std::uint32_t id);
    void takeViewport(std::uint32_t id);
    void takeScale(std::uint32_t id);

    [[nodiscard]] FakeCompositor& compositor() const { return compositor_; }

private:
    struct Held;

    void attach(wl_resource* buffer, std::int32_t x, std::int32_t y);
    void damage(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height);
    void setInputRegion(wl_resource* region);
    void setBufferScale(std::int32_t scale);
    void commit();
    void takePicture();
    void setSize(std::uint32_t width, std::uint32_t height);
    void setAnchor(std::uint32_t edges);
    void setExclusiveZone(std::int32_t zone);
    void setKeyboard(std::uint32_t interactivity);
    void acknowledge(std::uint32_t serial);
    void setDestination(std::int32_t width, std::int32_t height);

    FakeCompositor& compositor_;
    wl_resource* resource_;
    wl_resource* role_ = nullptr;
    wl_resource* scale_ = nullptr;
    std::unique_ptr<Held> attached_;
    std::vector<std::unique_ptr<Held>> held_;
    QRegion pendingChange_;
    bool isAsked_ = false;
    bool isConfigured_ = false;
};

} // namespace tilewright::testing
