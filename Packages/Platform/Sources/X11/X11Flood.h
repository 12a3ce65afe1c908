#pragma once

#include <cstdint>

namespace tilewright {

/// Gives memory back to the system after a flood of events, of which the heap has grown. Cheap
/// where there is none.
class X11Flood {
public:
    /// So many events at once are no desktop's everyday life.
    static constexpr std::uint64_t least = 10'000;
    /// So many that wait together are more than a few.
    static constexpr std::uint64_t leastTogether = 1000;

    /// Counts events that were left out for later ones; each `least` of them the heap gives back
    /// what is free. Between floods that leaves less than the events of one such count.
    void note(std::uint64_t events);
    /// Says how many events have waited together and are heard. More than a few held much memory
    /// together, which is given back when it is calm.
    void noteTogether(std::uint64_t events);
    /// No event waits.
    void noteCalm();

    /// How often memory was given back. For tests.
    [[nodiscard]] std::uint64_t timesGivenBack() const { return timesGivenBack_; }

private:
    void giveBack();

    std::uint64_t events_ = 0;
    bool hasHeldMany_ = false;
    std::uint64_t timesGivenBack_ = 0;
};

} // namespace tilewright
