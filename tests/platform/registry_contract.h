// What the program relies on of any platform's registry, as tests against the interface alone. A platform runs them by
// linking registry_contract.cpp and instantiating RegistryContract with a factory of its own.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace quillbox {

/// A registry to be tried, with a place in it and on its file system that the tests may fill.
class RegistryUnderTest {
 public:
  virtual ~RegistryUnderTest() = default;
  virtual Registry& GetRegistry() = 0;
  virtual RegistryPath Base() = 0;  ///< a key that does not exist; its parent does
  virtual WinPath Folder() = 0;     ///< an empty folder
};

using RegistryFactory = std::function<std::unique_ptr<RegistryUnderTest>()>;

class RegistryContract : public testing::TestWithParam<RegistryFactory> {
 protected:
  RegistryContract();

  Key Make(const RegistryPath& path);
  Status Exists(const RegistryPath& path) { return registry.Open(path, Access::Read).status; }
  Status Set(const Key& key, std::string_view name, ValueType type, const std::string& data);
  /// The value's data, or its status as "status 2".
  std::string Get(const Key& key, std::string_view name);

  std::unique_ptr<RegistryUnderTest> system;
  Registry& registry;
  RegistryPath base;
};

}  // namespace quillbox
