// LinkClaim: at any time one living program serves a link, whatever stands in the file system.
#pragma once

#include <string>

namespace gainsmith::sim {

// Held by name with the operating system, which lets go of it when the program ends in any way, so
// that a link left behind by a crash is free.
class LinkClaim {
 public:
  LinkClaim() = default;
  ~LinkClaim() { Release(); }
  LinkClaim(const LinkClaim&) = delete;
  LinkClaim& operator=(const LinkClaim&) = delete;

  // False when another claim to the path stands. Lets go of an earlier path; taking the same path
  // again does nothing.
  bool Take(const std::string& path);
  void Release();

 private:
  int handle_ = -1;
  std::string name_;
};

}  // namespace gainsmith::sim
