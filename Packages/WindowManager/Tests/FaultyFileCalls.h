#pragma once

#include <string>
#include <vector>

/// Stands between this process and the system for the calls that change files, so that each of
/// them can be made to fail, or to be the process's last, in turn.
namespace tilewright::FaultyFileCalls {

enum class Fault {
    none,
    /// The call answers ENOSPC and does nothing.
    fail,
    /// This call and all later ones do.
    failFromThereOn,
    /// A write takes half of its bytes, and all later calls answer ENOSPC; other calls just fail.
    failHalfWay,
    /// The process is killed before the call.
    killBefore,
    /// The process is killed after the call.
    killAfter,
    /// Whatever the number: no file can be made, for want of a permission.
    refuseNewFiles,
    /// Whatever the number: the first read takes half of what it asks for, every later one answers
    /// EIO.
    failReadHalfWay,
};

/// Counts calls from now on; the one with that number (from 1) meets the fault.
void arm(Fault fault, int number);

/// Lets every call pass again; answers which there were, in order.
std::vector<std::string> disarm();

} // namespace tilewright::FaultyFileCalls
