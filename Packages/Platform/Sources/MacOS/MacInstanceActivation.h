#pragma once

#include <Platform/InstanceActivation.h>

#include <memory>

namespace tilewright {

namespace appkit {
class Observation;
}

/// One instance of the program in a login session. The system itself starts a bundle only once, and
/// tells the running one when the user opens it again; this covers a second copy of it, too. Main
/// thread only.
class MacInstanceActivation final : public InstanceActivation {
    Q_OBJECT

public:
    MacInstanceActivation();
    ~MacInstanceActivation() override;

    [[nodiscard]] Claim claim() override;

private:
    std::unique_ptr<appkit::Observation> requests_;
    std::unique_ptr<appkit::Observation> reopenings_;
};

} // namespace tilewright
