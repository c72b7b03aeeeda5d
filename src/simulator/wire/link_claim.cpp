// LinkClaim: at any time one living program serves a link, whatever stands in the file system.
#include "simulator/wire/link_claim.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <system_error>

namespace gainsmith::sim {

namespace {

// The same for every way to write the path, and short enough for any path.
std::string NameOfLink(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code ignored;
  const fs::path link = fs::absolute(path, ignored);
  const fs::path whole = fs::weakly_canonical(link.parent_path(), ignored) / link.filename();
  // FNV-1a.
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const char letter : whole.string()) {
    hash = (hash ^ static_cast<unsigned char>(letter)) * 0x100000001B3u;
  }
  return "kvt518-sim/" + std::to_string(hash);
}

}  // namespace

bool LinkClaim::Take(const std::string& path) {
  const std::string name = NameOfLink(path);
  if (handle_ >= 0 && name == name_) return true;
  Release();
  // A name that begins with a zero byte has no file, and goes with the program.
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::copy(name.begin(), name.end(), address.sun_path + 1);
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
  handle_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (bind(handle_, reinterpret_cast<const sockaddr*>(&address), length) == 0) {
    name_ = name;
    return true;
  }
  Release();
  return false;
}

void LinkClaim::Release() {
  if (handle_ >= 0) close(handle_);
  handle_ = -1;
}

}  // namespace gainsmith::sim
