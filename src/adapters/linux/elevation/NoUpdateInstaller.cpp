#include "adapters/linux/elevation/makeUpdateInstaller.h"

namespace ambertide {

namespace {

/// Never used, as this build has no updater either.
class NoUpdateInstaller final : public UpdateInstaller
{
public:
    void install(const UpdatePackage &, std::function<void(Result)> done) override { done({Outcome::Failed, {}}); }
};

} // namespace

std::unique_ptr<UpdateInstaller> makeUpdateInstaller(const std::filesystem::path &)
{
    return std::make_unique<NoUpdateInstaller>();
}

} // namespace ambertide
