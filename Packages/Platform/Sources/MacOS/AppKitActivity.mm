#include "AppKitActivity.h"

#include "MacText.h"

namespace tilewright::appkit {

namespace {

class UserActivity final : public Activity {
  public:
    explicit UserActivity(const QString& reason)
        : token_([[NSProcessInfo processInfo]
              beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                                reason:toNSString(reason)]) {}
    ~UserActivity() override { [[NSProcessInfo processInfo] endActivity:token_]; }

  private:
    id<NSObject> token_;
};

} // namespace

std::unique_ptr<Activity> beginActivity(const QString& reason) {
    return std::make_unique<UserActivity>(reason);
}

} // namespace tilewright::appkit
