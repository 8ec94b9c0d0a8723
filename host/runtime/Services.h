#pragma once

// The services that plug-ins look up by name, and the settings they answer by.

#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/runtime/MemoryFailures.h"
#include "sdk/HostTypes.h"

namespace zemhost {

// While one lives, the services answer for it, and failures to find memory are counted. One at a time in a
// process: the services are plain C functions without a context. Strings, folder items and objects do not
// belong to it and may outlive it.
class ServiceSession {
 public:
  struct Settings {
    double version = kFirstVersionWithFourWords;  // what REALGetRBVersion answers
    std::vector<std::string> leftOut;             // names that the resolver does not know
    // Called for each registration, inside the plug-in's call. What they throw is kept for rethrowFailure().
    std::function<void(REALclassDefinition &)> onClass;
    std::function<void(const REALmethodDefinition &)> onMethod;
  };

  struct LookUp {
    std::string name;
    int64_t times;
  };

  // Throws std::logic_error while another session lives, and std::invalid_argument when a name that is to be
  // left out is no service.
  explicit ServiceSession(Settings settings);
  ServiceSession(const ServiceSession &) = delete;
  ServiceSession &operator=(const ServiceSession &) = delete;
  ~ServiceSession();

  // The resolver for a plug-in's entry point. It knows "ResolverPPC", which gives the resolver of the other
  // names; both answer null for any other name, and while there is no session.
  static REALresolver resolver();

  // True when plug-ins of this session lay their method lists out with three words an entry: those that do
  // not learn of a version that has four.
  bool wantsThreeWordMethods() const;

  // The interface version that a plug-in announced; 0 when none did.
  int32_t announcedVersion() const { return announcedVersion_; }

  // The names asked for, each once, in the order of the first time.
  const std::vector<LookUp> &lookUps() const { return lookUps_; }

  // Throws what a registration callback threw first, once.
  void rethrowFailure();

  // The names that the second resolver knows when nothing is left out.
  static std::vector<std::string_view> serviceNames();

 private:
  friend struct ServiceCalls;

  MemoryFailureCount memoryFailures_;
  Settings settings_;
  int32_t announcedVersion_ = 0;
  std::vector<LookUp> lookUps_;
  std::exception_ptr failure_;
};

}  // namespace zemhost
