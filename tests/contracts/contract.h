// What the contract suites share.
#pragma once

#include <gtest/gtest.h>

#include "tests/contracts/host_services.h"

namespace quillfile {

class Contract : public testing::TestWithParam<ContractHost> {
 protected:
  const std::unique_ptr<HostServices> host = GetParam().make();
  const ServicePorts ports = host->ports();
};

#define FOR_EVERY_HOST(suite)                                                \
  INSTANTIATE_TEST_SUITE_P(Hosts, suite, testing::ValuesIn(contractHosts()), \
                           [](const auto& given) { return given.param.name; })

}  // namespace quillfile
