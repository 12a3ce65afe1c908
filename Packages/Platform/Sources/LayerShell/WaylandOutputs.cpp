#include "WaylandOutputs.h"

#include "WaylandListener.h"
#include "WaylandProtocols.h"

#include <algorithm>
#include <utility>

namespace tilewright {

/// One output while the compositor tells of it, step by step.
class WaylandOutputs::Source {
public:
    Source(WaylandOutputs& outputs, const WaylandOffer& offer)
        : outputs_(outputs)
        , output_(outputs.connection_.bind<wl_output>(offer, wl_output_interface, 4)) {
        next_.number = offer.number;
        static constexpr wl_output_listener events{
            .geometry = wayland::Call<&Source::noteGeometry>::on,
            .mode = wayland::Call<&Source::noteMode>::on,
            .done = wayland::Call<&Source::finish>::on,
            .scale = wayland::Call<&Source::noteScale>::on,
            .name = wayland::Call<&Source::noteName>::on,
            .description = wayland::Call<&Source::noteDescription>::on,
        };
        wl_output_add_listener(output_.get(), &events, this);
        zxdg_output_manager_v1* manager = outputs.connection_.globals().outputManager.get();
        if (!manager)
            return;
        logical_ =
            outputs.connection_.own(zxdg_output_manager_v1_get_xdg_output(manager, output_.get()));
        static constexpr zxdg_output_v1_listener logicalEvents{
            .logical_position = wayland::Call<&Source::noteLogicalPosition>::on,
            .logical_size = wayland::Call<&Source::noteLogicalSize>::on,
            .done = wayland::Call<&Source::finish>::on,
            .name = wayland::Call<&Source::noteName>::on,
            .description = wayland::Call<&Source::noteDescription>::on,
        };
        zxdg_output_v1_add_listener(logical_.get(), &logicalEvents, this);
    }

    [[nodiscard]] wl_output* get() const { return output_.get(); }
    [[nodiscard]] std::uint32_t number() const { return next_.number; }
    /// What is known once the compositor has told all of it.
    [[nodiscard]] const WaylandOutput& known() const { return known_; }
    [[nodiscard]] bool isKnown() const { return !known_.frame.isEmpty(); }

private:
    void noteGeometry(std::int32_t x, std::int32_t y, std::int32_t /*widthInMillimetres*/,
                      std::int32_t /*heightInMillimetres*/, std::int32_t /*subpixel*/,
                      const char* make, const char* model, std::int32_t transform) {
        position_ = {x, y};
        next_.make = QString::fromUtf8(make);
        next_.model = QString::fromUtf8(model);
        isOnItsSide_ = transform == WL_OUTPUT_TRANSFORM_90 ||
                       transform == WL_OUTPUT_TRANSFORM_270 ||
                       transform == WL_OUTPUT_TRANSFORM_FLIPPED_90 ||
                       transform == WL_OUTPUT_TRANSFORM_FLIPPED_270;
    }
    void noteMode(std::uint32_t flags, std::int32_t width, std::int32_t height,
                  std::int32_t /*refreshRate*/) {
        if ((flags & WL_OUTPUT_MODE_CURRENT) != 0)
            mode_ = {width, height};
    }
    void noteScale(std::int32_t scale) { next_.wholeScale = std::max(scale, 1); }
    void noteName(const char* name) { next_.name = QString::fromUtf8(name); }
    void noteDescription(const char* description) {
        next_.description = QString::fromUtf8(description);
    }
    void noteLogicalPosition(std::int32_t x, std::int32_t y) { logicalFrame_.moveTopLeft({x, y}); }
    void noteLogicalSize(std::int32_t width, std::int32_t height) {
        logicalFrame_.setSize({width, height});
    }
    void finish() {
        // Its logical place is told apart, and later.
        if (logical_ && logicalFrame_.isEmpty())
            return;
        next_.pixels = isOnItsSide_ ? mode_.transposed() : mode_;
        next_.frame = logical_ ? logicalFrame_ : QRect(position_, next_.pixels / next_.wholeScale);
        if (std::exchange(known_, next_) != next_)
            outputs_.refresh();
    }

    WaylandOutputs& outputs_;
    WaylandObject<wl_output> output_;
    WaylandObject<zxdg_output_v1> logical_;
    WaylandOutput next_;
    WaylandOutput known_;
    QPoint position_;
    QSize mode_;
    QRect logicalFrame_;
    bool isOnItsSide_ = false;
};

double WaylandOutput::pixelsPerUnit() const {
    return frame.isEmpty() ? 1 : static_cast<double>(pixels.width()) / frame.width();
}

WaylandOutputs::WaylandOutputs(WaylandConnection& connection)
    : connection_(connection) {
    connect(&connection_, &WaylandConnection::ready, this, &WaylandOutputs::begin);
    connect(&connection_, &WaylandConnection::lost, this, &WaylandOutputs::end);
    connect(&connection_, &WaylandConnection::offered, this, &WaylandOutputs::add);
    connect(&connection_, &WaylandConnection::withdrawn, this, &WaylandOutputs::remove);
    begin();
}

WaylandOutputs::~WaylandOutputs() = default;

void WaylandOutputs::begin() {
    for (const WaylandOffer& offer : connection_.offers())
        add(offer);
}

void WaylandOutputs::end() {
    sources_.clear();
    refresh();
}

void WaylandOutputs::add(const WaylandOffer& offer) {
    if (offer.interface == wl_output_interface.name)
        sources_.push_back(std::make_unique<Source>(*this, offer));
}

void WaylandOutputs::remove(std::uint32_t number) {
    if (std::erase_if(sources_,
                      [number](const auto& source) { return source->number() == number; }) > 0)
        refresh();
}

void WaylandOutputs::refresh() {
    std::vector<WaylandOutput> known;
    for (const auto& source : sources_) {
        if (source->isKnown())
            known.push_back(source->known());
    }
    if (std::exchange(all_, known) != known)
        Q_EMIT changed();
}

const WaylandOutput* WaylandOutputs::named(const QString& name) const {
    const auto found = std::find_if(all_.begin(), all_.end(),
                                    [&](const WaylandOutput& one) { return one.name == name; });
    return found == all_.end() ? nullptr : &*found;
}

const WaylandOutput* WaylandOutputs::at(const QRect& frame) const {
    const WaylandOutput* best = nullptr;
    qint64 bestArea = 0;
    for (const WaylandOutput& output : all_) {
        const QRect common = output.frame.intersected(frame);
        const qint64 area = common.isEmpty() ? 0 : qint64{common.width()} * common.height();
        if (area > bestArea) {
            best = &output;
            bestArea = area;
        }
    }
    return best;
}

wl_output* WaylandOutputs::object(std::uint32_t number) const {
    const auto found = std::find_if(sources_.begin(), sources_.end(), [number](const auto& source) {
        return source->number() == number;
    });
    return found == sources_.end() ? nullptr : (*found)->get();
}

} // namespace tilewright
