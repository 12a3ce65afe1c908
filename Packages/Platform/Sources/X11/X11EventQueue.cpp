#include "X11EventQueue.h"

#include <xcb/xfixes.h>
#include <xcb/xinput.h>

namespace tilewright {

namespace {

constexpr std::uint64_t subject(std::uint32_t whose, std::uint32_t what) {
    constexpr int bits = 32;
    return std::uint64_t{whose} << bits | what;
}

// No window has these numbers.
constexpr std::uint32_t selection = 0xffffffff;
constexpr std::uint32_t mapping = 0xfffffffe;
constexpr std::uint64_t rawMotion = subject(0xfffffffd, 0);

} // namespace

void X11EventQueue::push(Event event) {
    const std::uint64_t what = subjectOf(*event);
    if (partsMoves(*event))
        notices_.erase(rawMotion);
    events_.push_back(std::move(event));
    if (what == 0)
        return;
    const auto last = std::prev(events_.end());
    const auto [found, isFirst] = notices_.try_emplace(what, last);
    if (isFirst)
        return;
    // The last one and not the first: what is told in between may be older than what is read now.
    events_.erase(found->second);
    found->second = last;
    ++leftOut_;
}

const xcb_generic_event_t* X11EventQueue::front() const {
    return events_.empty() ? nullptr : events_.front().get();
}

X11EventQueue::Event X11EventQueue::take() {
    // Of moves that other input parts, later ones may wait.
    if (const auto notice = notices_.find(subjectOf(*events_.front()));
        notice != notices_.end() && notice->second == events_.begin())
        notices_.erase(notice);
    Event event = std::move(events_.front());
    events_.pop_front();
    return event;
}

std::uint64_t X11EventQueue::subjectOf(const xcb_generic_event_t& event) const {
    // What others send as if it were a notice counts no more than one.
    const std::uint8_t type = event.response_type & 0x7f;
    const void* data = &event;
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto& notice = *static_cast<const xcb_property_notify_event_t*>(data);
        const bool isOwn = (notice.window & ~numbersMask_) == ownNumbers_;
        return isOwn ? 0 : subject(notice.window, notice.atom);
    }
    if (type == XCB_MAPPING_NOTIFY)
        return subject(mapping, static_cast<const xcb_mapping_notify_event_t*>(data)->request);
    if (selectionNotice_ != 0 && type == selectionNotice_)
        return subject(selection,
                       static_cast<const xcb_xfixes_selection_notify_event_t*>(data)->selection);
    return inputOf(event) == XCB_INPUT_RAW_MOTION ? rawMotion : 0;
}

bool X11EventQueue::partsMoves(const xcb_generic_event_t& event) const {
    const auto input = inputOf(event);
    return input ? *input != XCB_INPUT_RAW_MOTION
                 : keyboardNotice_ != 0 && (event.response_type & 0x7f) == keyboardNotice_;
}

std::optional<std::uint16_t> X11EventQueue::inputOf(const xcb_generic_event_t& event) const {
    const void* data = &event;
    const auto& generic = *static_cast<const xcb_ge_generic_event_t*>(data);
    if (inputExtension_ == 0 || event.response_type != XCB_GE_GENERIC ||
        generic.extension != inputExtension_)
        return std::nullopt;
    return generic.event_type;
}

} // namespace tilewright
