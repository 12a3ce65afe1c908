#pragma once

#include "Lifetime.h"
#include "MainLoop.h"

#include <utility>

namespace tilewright {

/// A call on a later turn of the event loop: one for all requests that wait together. A member of
/// whatever the action uses, declared after it; once it has ended the call does not come any more.
/// Main thread only.
class PostedCall {
public:
    /// The loop has to outlive this. The action may ask for the next call.
    PostedCall(MainLoop& loop, MainLoop::Task action)
        : loop_(loop)
        , action_(std::move(action)) {}
    PostedCall(const PostedCall&) = delete;

    /// Asks for the call.
    void post() {
        if (std::exchange(isPosted_, true))
            return;
        loop_.post(life_.guard([this] {
            isPosted_ = false;
            action_();
        }));
    }

private:
    MainLoop& loop_;
    const MainLoop::Task action_;
    bool isPosted_ = false;
    Lifetime life_;
};

} // namespace tilewright
