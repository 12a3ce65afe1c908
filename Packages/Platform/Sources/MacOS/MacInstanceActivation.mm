#include "MacInstanceActivation.h"

#include "MacText.h"

#include <AppKit/AppKit.h>

namespace tilewright {

namespace {

NSString* requestName() { return toNSString(QStringLiteral("io.github.tilewright.ShowPanel")); }

} // namespace

/// Hears of later starts of the program.
class MacInstanceActivation::Observation {
  public:
    explicit Observation(MacInstanceActivation& activation) {
        MacInstanceActivation* const observed = &activation;
        token_ = [[NSDistributedNotificationCenter defaultCenter]
            addObserverForName:requestName()
                        object:nil
                         queue:[NSOperationQueue mainQueue]
                    usingBlock:^(NSNotification*) {
                      Q_EMIT observed->activationRequested();
                    }];
    }
    ~Observation() { [[NSDistributedNotificationCenter defaultCenter] removeObserver:token_]; }
    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;

  private:
    id token_ = nil;
};

MacInstanceActivation::MacInstanceActivation() = default;
MacInstanceActivation::~MacInstanceActivation() = default;

InstanceActivation::Claim MacInstanceActivation::claim() {
    NSString* identifier = [[NSBundle mainBundle] bundleIdentifier];
    // A program started outside its bundle has no identifier to look for.
    const NSUInteger running =
        identifier
            ? [[NSRunningApplication runningApplicationsWithBundleIdentifier:identifier] count]
            : 0;
    if (running > 1) {
        [[NSDistributedNotificationCenter defaultCenter] postNotificationName:requestName()
                                                                       object:nil
                                                                     userInfo:nil
                                                           deliverImmediately:YES];
        return Claim::another;
    }
    observation_ = std::make_unique<Observation>(*this);
    return Claim::first;
}

} // namespace tilewright
