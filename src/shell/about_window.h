// Dialog: the About box.
#pragma once

#include "platform/world.h"

namespace gainsmith {

struct Dialog : Window {
  explicit Dialog(World& world);

  Image Image1;
  Label Label1, lblFirmWareVersion, lblTorvaneWebLink, Label3, lblTorvaneUSAWebLink, Label2;
  Button Command1;

  void Form_Load() override;
  void Command1_Click();
  void lblTorvaneWebLink_Click();
  void lblTorvaneUSAWebLink_Click();

 private:
  World& world_;
};

// The maker's main web site and its second one.
inline constexpr const char* TorvaneHost = "www.torvane.example";
inline constexpr const char* TorvaneUsaHost = "usa.torvane.example";

}  // namespace gainsmith
