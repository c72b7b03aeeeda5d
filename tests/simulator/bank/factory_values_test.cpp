// The factory values against the defaults file that comes with the tool.
#include "simulator/bank/factory_values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "params/config_text.h"
#include "params/drive_flags.h"
#include "params/parameter_table.h"

namespace gainsmith::sim {
namespace {

TEST(FactoryValues, AreWhatADownloadOfTheDefaultsFileWrites) {
  std::ifstream file(GAINSMITH_DATA_DIR "/default.ini", std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  ParameterStore defaults;
  ASSERT_TRUE(ParseConfig(text, defaults));
  EXPECT_EQ(FormatConfig(defaults), text) << "not as the tool would write it";

  std::map<int, double> downloaded;
  for (const ParameterRow& row : ParameterRows()) {
    if (!Travels(row.Index)) continue;
    const bool isFlag = row.Source == Register::Flags;
    downloaded[static_cast<int>(row.Source)] =
        isFlag ? FlagsToSend(defaults) : ValueToRaw(row.Index, defaults[row.Index]);
  }
  std::map<int, double> factory;
  for (const FactoryValue& parameter : FactoryParameters()) {
    if (parameter.Register == Reg::Trap2WidthHz) continue;  // no host writes it
    factory[static_cast<int>(parameter.Register)] = parameter.Value;
  }
  ASSERT_EQ(factory.size(), downloaded.size());
  for (const auto& [reg, word] : downloaded) {
    EXPECT_NEAR(factory[reg], word, 0.01) << "register " << reg;
  }
}

}  // namespace
}  // namespace gainsmith::sim
