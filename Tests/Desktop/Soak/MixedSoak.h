#pragma once

namespace tilewright::testing {

/// How long a soak is. A round is four drags of a window into a zone, two openings of the panel, a
/// keep-awake session begun and ended, and an opening of the settings with five edits of a layout:
/// thirteen events, as fast as the program takes them.
struct SoakLength {
    /// How often what the program holds is measured.
    int batches = 0;
    int roundsPerBatch = 0;
    /// What the program's memory may grow by in the calmest eighth of the batches. Memory is
    /// counted in pages: a short batch cannot tell as little as a long one.
    int bytesPerEvent = 0;
};

/// Uses the running program and expects of every event that it does what it should; of what the
/// program holds (memory, file descriptors, X resources, windows) that it does not grow with use;
/// and of the program that it comes to rest afterwards and ends in order, which under a sanitizer
/// means without a finding. Prints what was measured after each batch. The program may run under
/// what TILEWRIGHT_WATCHED_BY names, such as a memory checker: then its memory says nothing.
void expectNothingPilesUpInUse(SoakLength length);

} // namespace tilewright::testing
