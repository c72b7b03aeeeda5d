// Dialog, the About box: its labels and links.
#include "shell/about_window.h"

#include <string>

#include "platform/common_texts.h"

namespace gainsmith {

Dialog::Dialog(World& world) : world_(world) {
  Name = "Dialog";
  Caption = MainTitle;
  ClientWidthTwips = 7200;
  ClientHeightTwips = 3450;

  Add(Image1, "Image1").Picture = "about";
  Image1.Place(300, 300, 1800, 1800);
  Image1.AccessibleName = "Torvane Gainsmith";
  Add(Label1, "Label1").Caption = "Torvane Gainsmith forKVT518";
  Label1.Heading = true;
  Label1.Place(2400, 300, 4500, 420);
  Add(lblFirmWareVersion, "lblFirmWareVersion").Caption = "Formware Version:    1.1";
  lblFirmWareVersion.Place(2400, 840, 4500, 300);

  Add(Command1, "Command1").Caption = "OK";
  Command1.Place(5400, 2760, 1500, 420);
  Command1.OnClick = [this] { Command1_Click(); };
  Add(lblTorvaneWebLink, "lblTorvaneWebLink").Caption = TorvaneHost;
  lblTorvaneWebLink.Place(2400, 1350, 2100, 300);
  lblTorvaneWebLink.OnClick = [this] { lblTorvaneWebLink_Click(); };
  Add(Label3, "Label3").Caption = "/";
  Label3.Place(4530, 1350, 150, 300);
  Add(lblTorvaneUSAWebLink, "lblTorvaneUSAWebLink").Caption = TorvaneUsaHost;
  lblTorvaneUSAWebLink.Place(4710, 1350, 2100, 300);
  lblTorvaneUSAWebLink.OnClick = [this] { lblTorvaneUSAWebLink_Click(); };

  Add(Label2, "Label2").Place(300, 2250, 6600, 300);
}

void Dialog::Form_Load() {
  LeftTwips = 4000;
  TopTwips = 1480;
  Label2.Caption = "Copyright \u00A9 2008-" + std::to_string(world_.PresentYear()) +
                   " Torvane. Use it with care: it moves real motors.";
}

void Dialog::Command1_Click() { world_.Unload(*this); }

void Dialog::lblTorvaneWebLink_Click() {
  world_.OpenDocument("http://" + std::string(TorvaneHost));
}

void Dialog::lblTorvaneUSAWebLink_Click() {
  world_.OpenDocument("http://" + std::string(TorvaneUsaHost));
}

}  // namespace gainsmith
