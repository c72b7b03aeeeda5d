// Transfers: the commands that move the whole table.
#pragma once

#include <functional>

#include "bench.h"

namespace gainsmith::test {

// The tool, connected, with nothing logged yet.
struct ConnectedBench : Bench {
  ConnectedBench() : Bench({}, Edition::ServiceBench) {
    Connect();
    TakeFrames();
    EXPECT_TRUE(TakeMessages().empty());
  }
};

// A command that moves the whole table, as the user gives it to a connected tool.
struct Transfer {
  const char* Name;
  std::function<void(Bench&)> Give;
};

inline void Confirm(Bench& bench, MenuItem& item) {
  bench.world.Answers.push_front(MessageAnswer::Yes);
  bench.user.Click(item);
}

// With rows from a file, which Write RAM needs.
inline void UseGrid(Bench& bench, Button Form8::*button) {
  bench.user.Click(bench.tool.benchMenu->mnuParameters);
  bench.world.ChosenFiles = {{ChosenFile::Outcome::Chosen, "/program/default.ini"}};
  bench.user.Click(bench.tool.form8.Command1);
  bench.user.Click(bench.tool.form8.*button);
}

inline const Transfer Transfers[] = {
    {"download", [](Bench& bench) { Confirm(bench, bench.tool.mdiForm1.mnuDownloadToDrive); }},
    {"reset", [](Bench& bench) { Confirm(bench, bench.tool.mdiForm1.mnuReset); }},
    {"open",
     [](Bench& bench) {
       bench.world.ChosenFiles = {{ChosenFile::Outcome::Chosen, "/program/default.ini"}};
       bench.user.Click(bench.tool.mdiForm1.mnuFileOpen);
     }},
    {"read", [](Bench& bench) { bench.tool.mdiForm1.ReadFromDrive.OnClick(); }},
    {"grid read", [](Bench& bench) { UseGrid(bench, &Form8::readdata); }},
    {"grid write", [](Bench& bench) { UseGrid(bench, &Form8::writedata); }},
    {"grid store", [](Bench& bench) { UseGrid(bench, &Form8::EEProm); }},
};
inline const Transfer& Download = Transfers[0];

}  // namespace gainsmith::test
