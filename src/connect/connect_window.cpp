// Form2: see the header.
#include "connect/connect_window.h"

#include <utility>

#include "params/drive_flags.h"
#include "platform/number_text.h"

namespace gainsmith {
namespace {

constexpr int LastPort = 12;
constexpr int LastDevice = 63;
constexpr std::array<const char*, 3> BaudRates{"9600", "19200", "38400"};
// Digits of the baud rate before this make SerialSettings.
constexpr const char* Framing = ",n,8,2";

}  // namespace

Form2::Form2(World& world, Link& link, ParameterStore& store, ShellState& shell, MDIForm1& main,
             BulkTransfer& transfer)
    : world_(world), link_(link), store_(store), shell_(shell), main_(main), transfer_(transfer) {
  Design();
}

void Form2::Form_Load() {
  LeftTwips = static_cast<int>(shell_.QuarterScreenWidth);
  TopTwips = static_cast<int>(shell_.QuarterScreenHeight);
  FillLists();
  const bool open = world_.IsPortOpen();
  Combo1[PortList].Choose(open ? openedPort_ : 0);
  Combo1[BaudList].Choose(open ? openedBaud_ : 2);
  Combo1[DeviceList].Choose(open ? link_.DeviceAddress : 1);
  if (!open) TakeChoices();
  ShowAction(open ? "Close" : "Open");
  Combo1[PortList].Enabled = !open;
}

// Enter opens; it never closes a connection in use.
void Form2::ShowAction(const char* caption) {
  openPort.Caption = caption;
  openPort.Default = openPort.Caption == "Open";
}

void Form2::FillLists() {
  for (ComboBox& list : Combo1) list.Items.clear();
  for (int port = 1; port <= LastPort; ++port) {
    Combo1[PortList].Items.push_back({"COM" + std::to_string(port), port, ""});
  }
  DescribePorts();
  for (const char* rate : BaudRates) Combo1[BaudList].Items.push_back({rate, 0, ""});
  for (int device = 0; device <= LastDevice; ++device) {
    Combo1[DeviceList].Items.push_back({std::to_string(device), device, ""});
  }
}

void Form2::TakeChoices() {
  for (std::size_t i = 0; i < Combo1.size(); ++i) Combo1_Click(i);
}

void Form2::DescribePorts() {
  const std::vector<std::string> behind = world_.DescribePorts(LastPort);
  for (ListItem& item : Combo1[PortList].Items) {
    item.ToolTip = behind.at(static_cast<std::size_t>(item.ItemData) - 1);
    item.Absent = item.ToolTip.empty();
    if (item.Absent) item.ToolTip = "There is no such port";
  }
}

void Form2::Combo1_Click(std::size_t index) {
  ComboBox& list = Combo1[index];
  switch (index) {
    case PortList:
      link_.PortNumber = static_cast<std::uint8_t>(list.ChosenData());
      break;
    case BaudList:
      link_.SerialSettings = list.Text + Framing;
      break;
    default:
      TakeDevice();
      break;
  }
}

void Form2::TakeDevice() {
  ComboBox& list = Combo1[DeviceList];
  // The second half of a transfer must not go to another drive than the first.
  if (shell_.BulkTransferRunning) {
    list.Choose(link_.DeviceAddress);
    return;
  }
  const auto chosen = static_cast<std::uint8_t>(LeadingNumber(list.Text));
  const bool changed = chosen != std::exchange(link_.DeviceAddress, chosen);
  if (!changed || !world_.IsPortOpen()) return;
  // It holds from the next frame on.
  main_.lblConnectionDetail.Caption = PortText();
  main_.OnSettingsReplaced("another device number was chosen");
}

void Form2::Command1_Click() { world_.Unload(*this); }

void Form2::openPort_Click() {
  const bool open = world_.IsPortOpen();
  if (!openPort.Enabled || (!open && shell_.BulkTransferRunning)) return;
  openPort.Enabled = false;
  if (open) {
    Close();
  } else {
    Open();
  }
  openPort.Enabled = true;
}

void Form2::Close() {
  link_.ClosePort();
  ShowAction("Open");
  Combo1[PortList].Enabled = true;
  main_.DisableDriveMenus();
  main_.DisableToolbarButtons();
  main_.ShowPort("");
  main_.ShowNotice(Notice::Transfer, "");
  main_.OnSettingsReplaced("the connection was closed");
  DescribePorts();
}

void Form2::Open() {
  TakeChoices();
  main_.ShowNotice(Notice::Window, "");
  // From the first frame on the drive is taken: nothing else may use it or this button.
  const TransferMark mark(shell_);
  bool reached = false;
  {
    const ActivityScope activity(main_, "Making contact");
    reached = MakeContact();
  }
  if (!reached) {
    TellReason();
    ReportFailure();
    return;
  }
  ShowAction("Close");
  openPort.Enabled = true;
  Combo1[PortList].Enabled = true;
  world_.Hide(*this);
  transfer_.readDrive();
  if (world_.IsPortOpen()) {
    main_.mnuPositionLoop.Enabled = true;
    main_.ErrCheck.Enabled = true;
  }
}

// The message has one text for all reasons.
void Form2::TellReason() {
  const std::string port = "COM" + std::to_string(link_.PortNumber);
  const std::string behind = world_.DescribePort(link_.PortNumber);
  if (world_.IsPortOpen()) {
    main_.TellTrouble(port + ": no drive answers there at " +
                      FixedText(LeadingNumber(link_.SerialSettings), 0) + " baud as device " +
                      std::to_string(link_.DeviceAddress) +
                      ". Check its supply, the cable, the line speed and the device number.");
  } else if (behind.empty()) {
    main_.TellTrouble(port +
                      " could not be opened: there is no such serial port. Plug the adapter in"
                      " and choose the port that appears.");
  } else {
    main_.TellTrouble(port + " could not be opened: " + behind);
  }
}

void Form2::ReportFailure() {
  world_.ShowMessage(
      {"Unable to Communicate with the Drive. Check your connection and confirm you "
       "have selected the right serial port.",
       "Communication Error", MessageButtons::Ok, MessageIcon::Critical});
  if (world_.IsPortOpen()) link_.ClosePort();
  // The dialog may have been opened anew meanwhile, over a port that was open then.
  ShowAction("Open");
  Combo1[PortList].Enabled = true;
  main_.ShowPort("");
  DescribePorts();
}

bool Form2::MakeContact() {
  if (!link_.OpenPort()) return false;
  openedPort_ = Combo1[PortList].ListIndex;
  openedBaud_ = Combo1[BaudList].ListIndex;
  const double baud = LeadingNumber(link_.SerialSettings);
  const std::string behind = world_.DescribePort(link_.PortNumber);
  openedAs_ = "COM" + std::to_string(link_.PortNumber) +
              (behind.empty() ? "" : " (" + behind + ")") + ", " + FixedText(baud, 0) + " baud";
  main_.ShowPort(PortText());

  if (!ReadIdentity(Register::Identity1, FirstIdentity)) return false;
  if (!ReadIdentity(Register::Identity2, SecondIdentity)) return false;
  const Errand errand(link_);
  const Sent sent = link_.ReadRegistersRetry(errand, link_.DeviceAddress, Register::Flags, 1);
  if (sent == Sent::Off) return false;
  if (sent == Sent::Taken) {
    TakeWholeDriveFlags(store_, link_.Raw());
    ApplyOperatingMode();
  }
  // Only a silent drive counts so far; after failed checks the connection goes on with what came.
  constexpr int MostErrors = 10;
  return link_.LinkErrorCount <= MostErrors;
}

bool Form2::ReadIdentity(Register reg, std::string& text) {
  // Without a wait before it the reply is polled for and counts as an error, which nobody looks at.
  const auto frame = link_.SendFrame(link_.DeviceAddress, Function::Read, reg, 1);
  link_.ReceiveReply(link_.DeviceAddress, Function::Read, frame.value());
  if (link_.RxBuffer.empty()) return false;
  text = std::to_string(link_.Raw());
  return true;
}

void Form2::ApplyOperatingMode() {
  const auto word = static_cast<std::uint16_t>(store_.DriveFlagsWord);
  if ((word & flags::ModeMask) == flags::VelocityMode) main_.TakeTestCommandsAway();
}

std::string Form2::PortText() const {
  return openedAs_ + ", device " + std::to_string(link_.DeviceAddress);
}

}  // namespace gainsmith
