#include "probes/registry/ThisStation.h"

#include "probes/registry/LocalRegistry.h"
#include "probes/registry/RegistryRead.h"

namespace mirovane {

StationIdentity thisStation() {
    const std::string computer = computerName();
    CLocalRegistry registry(computer, loginName());
    return {computer, GetDefaultUserName(registry, computer)};
}

} // namespace mirovane
