#include "tests/contracts/host_services.h"

namespace quillfile {

std::vector<ContractHost> contractHosts() { return fakeHosts(); }

}  // namespace quillfile
