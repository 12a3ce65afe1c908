#include "FakeOutput.h"

#include "FakeRequests.h"

#include <utility>
#include <xdg-output-unstable-v1-server.h>

namespace tilewright::testing {

FakeOutputGlobal::FakeOutputGlobal(wl_display* display, std::uint32_t version, FakeOutput values)
    : values_(std::move(values))
    , global_(wl_global_create(display, &wl_output_interface, static_cast<int>(version), this,
                               wayland::Bind<&FakeOutputGlobal::bind>::on)) {}

FakeOutputGlobal::~FakeOutputGlobal() {
    for (auto* resources : {&outputs_, &logicals_}) {
        for (wl_resource* resource : *resources)
            wl_resource_set_user_data(resource, nullptr);
    }
    wl_global_destroy(global_);
}

FakeOutputGlobal* FakeOutputGlobal::of(wl_resource* output) {
    return output ? static_cast<FakeOutputGlobal*>(wl_resource_get_user_data(output)) : nullptr;
}

void FakeOutputGlobal::bind(wl_client* client, std::uint32_t version, std::uint32_t id) {
    static constexpr struct wl_output_interface requests { .release = wayland::destroy, };
    wl_resource* output =
        wl_resource_create(client, &wl_output_interface, static_cast<int>(version), id);
    wl_resource_set_implementation(output, &requests, this, [](wl_resource* resource) {
        if (FakeOutputGlobal* global = of(resource))
            std::erase(global->outputs_, resource);
    });
    outputs_.push_back(output);
    tell(output);
    wl_output_send_done(output);
}

void FakeOutputGlobal::addLogical(wl_client* client, std::uint32_t version, std::uint32_t id) {
    static constexpr struct zxdg_output_v1_interface requests { .destroy = wayland::destroy, };
    wl_resource* logical =
        wl_resource_create(client, &zxdg_output_v1_interface, static_cast<int>(version), id);
    wl_resource_set_implementation(logical, &requests, this, [](wl_resource* resource) {
        if (FakeOutputGlobal* global = of(resource))
            std::erase(global->logicals_, resource);
    });
    logicals_.push_back(logical);
    tellLogical(logical);
    for (wl_resource* output : outputs_)
        wl_output_send_done(output);
}

void FakeOutputGlobal::change(const FakeOutput& values) {
    values_ = values;
    for (wl_resource* output : outputs_)
        tell(output);
    for (wl_resource* logical : logicals_)
        tellLogical(logical);
    for (wl_resource* output : outputs_)
        wl_output_send_done(output);
}

void FakeOutputGlobal::tell(wl_resource* output) const {
    const int version = wl_resource_get_version(output);
    wl_output_send_geometry(output, values_.frame.x(), values_.frame.y(), 600, 340,
                            WL_OUTPUT_SUBPIXEL_UNKNOWN, values_.make.toUtf8().constData(),
                            values_.model.toUtf8().constData(), values_.transform);
    // A mode that it could have but has not.
    wl_output_send_mode(output, 0, 640, 480, 60'000);
    wl_output_send_mode(output, WL_OUTPUT_MODE_CURRENT, values_.mode.width(), values_.mode.height(),
                        60'000);
    wl_output_send_scale(output, values_.wholeScale);
    if (version >= WL_OUTPUT_NAME_SINCE_VERSION) {
        wl_output_send_name(output, values_.name.toUtf8().constData());
        wl_output_send_description(output, values_.description.toUtf8().constData());
    }
}

void FakeOutputGlobal::tellLogical(wl_resource* logical) const {
    zxdg_output_v1_send_logical_position(logical, values_.frame.x(), values_.frame.y());
    zxdg_output_v1_send_logical_size(logical, values_.frame.width(), values_.frame.height());
    zxdg_output_v1_send_name(logical, values_.name.toUtf8().constData());
    zxdg_output_v1_send_description(logical, values_.description.toUtf8().constData());
    if (wl_resource_get_version(logical) < 3)
        zxdg_output_v1_send_done(logical);
}

} // namespace tilewright::testing
