#include "X11EventQueue.h"

#include <xcb/xfixes.h>

namespace tilewright {

void X11EventQueue::push(Event event) {
    const std::uint64_t subject = subjectOf(*event);
    events_.push_back(std::move(event));
    if (subject == 0)
        return;
    const auto last = std::prev(events_.end());
    const auto [found, isFirst] = notices_.try_emplace(subject, last);
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
    Event event = std::move(events_.front());
    events_.pop_front();
    if (const std::uint64_t subject = subjectOf(*event); subject != 0)
        notices_.erase(subject);
    return event;
}

std::uint64_t X11EventQueue::subjectOf(const xcb_generic_event_t& event) const {
    // What others send as if it were a notice counts no more than one.
    const std::uint8_t type = event.response_type & 0x7f;
    const void* data = &event;
    const auto subject = [](std::uint32_t whose, std::uint32_t what) {
        constexpr int bits = 32;
        return std::uint64_t{whose} << bits | what;
    };
    // No window has these numbers.
    constexpr std::uint32_t selection = 0xffffffff;
    constexpr std::uint32_t mapping = 0xfffffffe;
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
    return 0;
}

} // namespace tilewright
