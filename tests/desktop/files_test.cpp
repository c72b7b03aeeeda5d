// Files as the tool reads them: no further than anyone looks.
#include <fstream>

#include "desk.h"

namespace gainsmith::test {
namespace {

TEST_F(Desk, OfAHugeFileTheWholeLinesOfItsStartAreRead) {
  std::string lines;
  while (lines.size() <= World::MostFileBytes) lines += "0& 1234567 \r\n";
  const std::size_t whole = lines.rfind('\n', World::MostFileBytes - 1) + 1;
  const std::string start = lines.substr(0, World::MostFileBytes);
  std::ofstream(Path("most")) << start;
  std::ofstream(Path("more")) << lines;
  std::ofstream(Path("one line")) << std::string(World::MostFileBytes + 1, '1');
  EXPECT_TRUE(world.ReadFile(Path("most")) == start) << "this one is all there";
  EXPECT_TRUE(world.ReadFile(Path("more")) == lines.substr(0, whole)) << "no number is cut";
  EXPECT_TRUE(world.ReadFile(Path("one line")) == "");
}

}  // namespace
}  // namespace gainsmith::test
