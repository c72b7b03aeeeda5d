// The label columns of the plots: whole at every zoom level, in every font of the program.
#include <QApplication>

#include "desk.h"
#include "driver/layout_check.h"
#include "trace/plot_design.h"

namespace gainsmith::test {
namespace {

struct AxisTest : Desk {
  ~AxisTest() override {
    world.EndProgram();
    QApplication::setFont(font);
  }
  static void Fill(LabelColumn& column, const AxisTexts& texts) {
    for (std::size_t i = 0; i < column.size(); ++i) column[i].Caption = texts[i];
  }
  const QFont font = QApplication::font();
  Frame frame;
  ComboBox times;
  StatusBar bar;
  TraceState trace;
  bool idle = true;
};

struct PlotKind {
  const PlotDescription* Description;
  PlotPlace Place;
  int WindowTwips;
};

TEST_F(AxisTest, EveryLabelIsWholeAtEveryZoomLevel) {
  const PlotKind kinds[] = {{&VelocityPlot, VelocityPlotPlace, 10845},
                            {&PositionPlot, PositionPlotPlace, 12510},
                            {&ScopePlot, ScopePlotPlace, 12900}};
  for (const char* family : {"Liberation Sans", "DejaVu Sans"}) {
    QFont now = font;
    now.setFamilies({QString::fromLatin1(family)});
    QApplication::setFont(now);
    for (const PlotKind& kind : kinds) {
      PlainWindow form{"Form"};
      form.ClientWidthTwips = kind.WindowTwips;
      form.ClientHeightTwips = 7500;
      form.Add(frame, "Frame2").Place(0, 0, form.ClientWidthTwips, form.ClientHeightTwips);
      Plot plot(*kind.Description, trace, idle, times, &bar);
      DesignPlot(form, frame, plot, kind.Place);
      world.Show(form);
      for (const int level : {1, 3, 5, 7, 14}) {
        Fill(plot.Label3, ZoomedCurrentTexts(-12345.6F, 0.1F, level));
        Fill(plot.Label6, ZoomedStarTexts(-3123.45F, 0.1F, level));
        Fill(plot.Label5, ZoomedStarTexts(-123456.7F, 0.1F, level));
        driver.Settle();
        EXPECT_EQ(LayoutFaults(*driver.Find("Form")), Lines{}) << family << level;
        const QFont shown = driver.Find("Form.Label6(0)")->font();
        EXPECT_EQ(shown, driver.Find("Form.Label6(10)")->font()) << "a column looks alike";
        EXPECT_TRUE(level > 7 || shown.pixelSize() == now.pixelSize());
      }
      Fill(plot.Label6, StartTexts(-400, 80, 0));
      driver.Settle();
      EXPECT_EQ(driver.Find("Form.Label6(0)")->font().stretch(), now.stretch()) << "and comes back";
      world.Unload(form);
      driver.Settle();
    }
  }
}

}  // namespace
}  // namespace gainsmith::test
