#include "console/verbs.h"

#include <algorithm>
#include <array>

namespace gainsmith {

Verb VerbNamed(const std::string& name) {
  struct Named {
    const char* Name;
    Verb Run;
  };
  static constexpr std::array verbs{
      Named{"ports", Ports}, Named{"doctor", Doctor}, Named{"show", Show},
      Named{"save", Save},   Named{"diff", Diff},     Named{"load", Load},
      Named{"reset", Reset}, Named{"errors", Errors}, Named{"step", Step},
      Named{"move", Move},   Named{"watch", Watch},
  };
  const auto* verb = std::find_if(verbs.begin(), verbs.end(),
                                  [&](const Named& candidate) { return candidate.Name == name; });
  return verb == verbs.end() ? nullptr : verb->Run;
}

}  // namespace gainsmith
