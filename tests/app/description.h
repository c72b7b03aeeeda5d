// Description: the records of all windows as lines of text, one for each control.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "app/tool.h"

namespace gainsmith::test {

class Description {
 public:
  explicit Description(const Tool& tool) {
    Add(tool.mdiForm1);
    for (const Window* window : std::initializer_list<const Window*>{
             &tool.waiting, &tool.form9, &tool.dialog, &tool.troubles, &tool.form2, &tool.form1,
             &tool.form3, &tool.form4, &tool.form5, &tool.form110, &tool.form8, &tool.sysConfig,
             &tool.velocityMode}) {
      Add(*window);
    }
  }

  void Add(const Window& window) {
    text_ << "\n" << window.Name << " " << Quoted(window.Caption);
    AddPlace(window.LeftTwips, window.TopTwips, window.ClientWidthTwips, window.ClientHeightTwips);
    text_ << " " << window.BackColor << " " << window.Loaded << window.Visible
          << static_cast<int>(window.Pointer) << "\n";
    for (const Timer* timer : window.Timers) text_ << "  every " << timer->IntervalMs << " ms\n";
    for (const Control* control : window.Controls) Add(*control);
  }

  void Add(const FrameWindow& frame) {
    Add(static_cast<const Window&>(frame));
    for (const MenuItem* menu : frame.Menus) AddMenu(*menu, "  ");
    for (const ToolButton* button : frame.ToolButtons) {
      text_ << "  tool " << button->Icon << " " << Quoted(button->ToolTip) << button->Enabled
            << "\n";
    }
    text_ << "  maximize box " << frame.MaximizeBox << "\n";
  }

  void AddSettings() {
    text_ << "\nSettings\n";
    for (const Slot slot : ListOrder()) {
      const ParameterRow& row = RowOf(slot);
      text_ << "  " << row.Key << " " << Quoted(std::string(TitleOf(row.Group)))
            << Quoted(std::string(row.PlainName)) << Quoted(std::string(row.Unit))
            << Quoted(std::string(row.Name)) << Quoted(std::string(row.Range)) << row.Scale << " "
            << row.PatternDecimals << "\n";
    }
  }

  // Which keys the fields of a window take; Enter may do something.
  void AddKeys(const Window& window) {
    for (const Control* control : window.Controls) {
      const auto* field = As<TextBox>(*control, ControlKind::TextBox);
      if (field == nullptr || !field->OnKeyPress) continue;
      text_ << "\nKeys of " << window.Name << " " << field->Name << ":";
      for (int key = 1; key < 128; ++key) {
        if (key != KeyEnter && field->OnKeyPress(key)) text_ << " " << key;
      }
    }
  }

  std::vector<std::string> Lines() const {
    std::istringstream all(text_.str());
    std::vector<std::string> lines;
    for (std::string line; std::getline(all, line);) {
      lines.push_back(line.erase(line.find_last_not_of(' ') + 1));
    }
    return lines;
  }

 private:
  static std::string Quoted(std::string text) {
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) {
      text.replace(at, 1, "\\n");
    }
    return "\"" + text + "\" ";
  }

  void AddPlace(int left, int top, int width, int height) {
    text_ << " " << left << "," << top << " " << width << "x" << height;
  }

  void AddMenu(const MenuItem& menu, const std::string& indent) {
    text_ << indent << "menu " << menu.Name << " " << Quoted(menu.Caption) << menu.Shortcut << " "
          << menu.Enabled << menu.Visible << "\n";
    for (const MenuItem* item : menu.Items) AddMenu(*item, indent + "  ");
  }

  void Add(const Control& control) {
    text_ << "  " << control.Name;
    AddPlace(control.LeftTwips, control.TopTwips, control.WidthTwips, control.HeightTwips);
    if (control.Container) text_ << " in " << control.Container->Name << "/" << control.Page;
    text_ << " " << control.Enabled << control.Visible << control.Parked << " " << std::hex
          << control.BackColor << " " << control.ForeColor << std::dec << " "
          << Quoted(control.Caption) << Quoted(control.ToolTip) << Quoted(control.AccessibleName);
    AddOwn(control);
    text_ << "\n";
  }

  void AddOwn(const Control& control) {
    if (const auto* label = As<Label>(control, ControlKind::Label)) {
      text_ << "label " << static_cast<int>(label->Alignment) << label->WordWrap << label->Heading
            << label->Elided << label->Squeeze;
    } else if (const auto* field = As<TextBox>(control, ControlKind::TextBox)) {
      text_ << "field " << Quoted(field->Text);
    } else if (const auto* button = As<Button>(control, ControlKind::Button)) {
      text_ << "button " << button->Swatch << button->Default << button->Cancel;
    } else if (const auto* list = As<ComboBox>(control, ControlKind::ComboBox)) {
      text_ << "list " << list->ListIndex << list->Editable << " " << Quoted(list->Text);
      for (const ListItem& item : list->Items)
        text_ << Quoted(item.Text) << item.ItemData << (item.Absent ? " absent " : " ");
    } else if (const auto* tabs = As<Tabs>(control, ControlKind::Tabs)) {
      text_ << "tabs " << tabs->CurrentPage << " ";
      for (const std::string& page : tabs->Pages) text_ << Quoted(page);
    } else if (const auto* picture = As<PictureBox>(control, ControlKind::PictureBox)) {
      const PictureScale& scale = picture->Scale;
      text_ << "picture " << scale.Left << " " << scale.Top << " " << scale.Width << " "
            << scale.Height << ", " << picture->Lines.size() << " lines";
      if (!picture->Lines.empty()) {
        text_ << " to " << picture->Lines.back().X2 << "," << picture->Lines.back().Y2 << " ";
      }
      for (const PictureText& text : picture->Texts) text_ << Quoted(text.Text);
    } else if (const auto* grid = As<Grid>(control, ControlKind::Grid)) {
      text_ << "grid " << grid->ManySelected << " ";
      for (const GridColumn& column : grid->Columns) {
        text_ << Quoted(column.Heading) << column.WidthTwips << " ";
      }
      text_ << grid->Rows.size() << " rows, " << grid->CurrentRow << " ";
      if (!grid->Rows.empty()) {
        for (const std::string& cell : grid->Rows.back()) text_ << Quoted(cell);
      }
    } else if (const auto* box = As<CheckBox>(control, ControlKind::CheckBox)) {
      text_ << "box " << box->Ticked;
    } else if (const auto* option = As<OptionButton>(control, ControlKind::OptionButton)) {
      text_ << "option " << option->Selected;
    } else if (const auto* bar = As<StatusBar>(control, ControlKind::StatusBar)) {
      text_ << "panels ";
      for (const std::string& panel : bar->Panels) text_ << Quoted(panel);
    } else if (const auto* progress = As<ProgressBar>(control, ControlKind::ProgressBar)) {
      text_ << "progress " << progress->Min << " " << progress->Value << " " << progress->Max;
    } else if (const auto* lamp = As<Lamp>(control, ControlKind::Lamp)) {
      text_ << "lamp " << lamp->Marked << Quoted(lamp->State);
    } else if (const auto* frame = As<Frame>(control, ControlKind::Frame)) {
      text_ << "frame " << frame->Border;
    } else {
      text_ << "kind " << static_cast<int>(control.Kind);
    }
  }

  template <typename T>
  static const T* As(const Control& control, ControlKind kind) {
    return control.Kind == kind ? static_cast<const T*>(&control) : nullptr;
  }

  std::ostringstream text_;
};

}  // namespace gainsmith::test
