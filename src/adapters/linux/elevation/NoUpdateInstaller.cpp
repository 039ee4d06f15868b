#include "adapters/linux/elevation/makeUpdateInstaller.h"

namespace ambertide {

namespace {

/// Nobody asks it: the updater is left out, too.
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
