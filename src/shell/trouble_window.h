// frmTroubles: the list of what went wrong lately, which a click in the main window's strip opens.
#pragma once

#include <cstdint>

#include "platform/world.h"
#include "shell/main_window.h"

namespace gainsmith {

struct frmTroubles : Window {
  frmTroubles(World& world, const MDIForm1& main);

  Grid grdTroubles;
  Button cmdCopy, cmdClose;

  void Form_Load() override;
  void Refresh() override;
  void cmdCopy_Click();

 private:
  World& world_;
  const MDIForm1& main_;
  std::uint64_t shown_ = 0;
};

}  // namespace gainsmith
