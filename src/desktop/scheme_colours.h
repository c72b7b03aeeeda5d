// Light and dark, and their colours.
#pragma once

#include <QRgb>

namespace gainsmith {

enum class Scheme { Light, Dark };

struct SchemeColours {
  QRgb Window, WindowText, Base, AlternateBase, Button, Highlight, HighlightedText, Link, Disabled,
      ToolTipBase, Placeholder;
};

constexpr SchemeColours ColoursOf(Scheme scheme) {
  constexpr SchemeColours Light{0xfff2f3f5, 0xff1b1f24, 0xffffffff, 0xfff6f7f9,
                                0xffe6e8eb, 0xff1f6fb5, 0xffffffff, 0xff1261a6,
                                0xff5f6770, 0xfffffbe6, 0xff6a727b};
  constexpr SchemeColours Dark{0xff30343a, 0xffe6e9ed, 0xff1d2024, 0xff24272c,
                               0xff3c424a, 0xff2f7fc4, 0xffffffff, 0xff6cb4ef,
                               0xffa6aeb8, 0xff3a3f46, 0xff8a929b};
  return scheme == Scheme::Dark ? Dark : Light;
}

}  // namespace gainsmith
