// The designs of all windows are those of designs.txt: places, captions, colours, lists, tips and
// the settings' names on the page, which everyone who works with the tool knows by heart, so that
// none changes by accident.
#include <gtest/gtest.h>

#include <string>

#include "bench.h"
#include "description.h"
#include "golden.h"

namespace gainsmith::test {
namespace {

TEST(DesignsTest, AreThoseThatUsersKnow) {
  Bench bench({}, Edition::ServiceBench);
  Description description(bench.tool);
  description.AddSettings();
  description.AddKeys(bench.tool.form3);
  description.AddKeys(bench.tool.velocityMode);
  description.AddKeys(bench.tool.sysConfig);
  ExpectKnown(description.Lines(), "designs.txt");
}

}  // namespace
}  // namespace gainsmith::test
