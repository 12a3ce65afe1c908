#pragma once

#include "X11Replies.h"

#include <cstdint>
#include <list>
#include <optional>
#include <unordered_map>
#include <xcb/xcb.h>

namespace tilewright {

/// Events that have arrived and were not heard yet, in the order of their arrival.
///
/// Of the notices that wait and tell of the same, only the last is kept: of a window's property, of
/// a selection's owner, of what keys or buttons mean. Whoever hears it reads what has become of it,
/// and anybody may change these faster than they can be read. Each notice about one of the
/// connection's own windows is kept: those count. Raw moves are one as long as no other input comes
/// between them.
class X11EventQueue {
public:
    using Event = X11Reply<xcb_generic_event_t>;

    /// For a connection that makes its windows' numbers from these.
    X11EventQueue(std::uint32_t ownNumbers, std::uint32_t numbersMask)
        : ownNumbers_(ownNumbers)
        , numbersMask_(numbersMask) {}

    /// Says which event tells of a selection's owner.
    void setSelectionNotice(std::uint8_t type) { selectionNotice_ = type; }
    /// Says whose generic events tell of raw input, by the extension's major opcode, and which
    /// event tells of the keyboard's state.
    void setInputNotices(std::uint8_t input, std::uint8_t keyboard) {
        inputExtension_ = input;
        keyboardNotice_ = keyboard;
    }

    void push(Event event);
    /// The event that arrived first; null where none waits.
    [[nodiscard]] const xcb_generic_event_t* front() const;
    /// Hands over the event that arrived first. One has to wait.
    [[nodiscard]] Event take();

    [[nodiscard]] bool isEmpty() const { return events_.empty(); }
    [[nodiscard]] std::size_t size() const { return events_.size(); }
    /// How many events were left out for a later one.
    [[nodiscard]] std::uint64_t leftOut() const { return leftOut_; }

private:
    using Events = std::list<Event>;

    /// What a notice tells of, the same for all that say the same; 0 for all other events.
    [[nodiscard]] std::uint64_t subjectOf(const xcb_generic_event_t& event) const;
    /// Whether moves before the event and moves after it are not the same.
    [[nodiscard]] bool partsMoves(const xcb_generic_event_t& event) const;
    /// The number of an event that tells of raw input; none for all other events.
    [[nodiscard]] std::optional<std::uint16_t> inputOf(const xcb_generic_event_t& event) const;

    const std::uint32_t ownNumbers_;
    const std::uint32_t numbersMask_;
    std::uint8_t selectionNotice_ = 0;
    std::uint8_t inputExtension_ = 0;
    std::uint8_t keyboardNotice_ = 0;
    Events events_;
    /// Where the notice of each subject waits.
    std::unordered_map<std::uint64_t, Events::iterator> notices_;
    std::uint64_t leftOut_ = 0;
};

} // namespace tilewright
