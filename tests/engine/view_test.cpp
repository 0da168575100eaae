// The display scale. Scaling, scrolling and the bars as a host sees them are
// scenarios (tests/cli/view_*.ies); strokes stretched with the picture and shown at
// the scroll offset are pinned by tools_interrupted.ies and the random sessions of
// history_sequence_test.cpp.
#include "test_support.h"
#include "view/display_scale.h"

namespace {

// Two linear ranges meeting at 100 %; below it, a picture larger than the reference
// surface is shrunk further by the larger of its ratios, never to 0 or below.
TEST(DisplayScaleTest, PercentagesAndTheShrinkCorrection) {
  struct Case {
    int percent, originalWidth, originalHeight;
    double scale;
  };
  for (const Case& c :
       {Case{0, 10, 10, 0.25}, Case{99, 10, 10, 0.9925}, Case{100, 1000, 1000, 1.0}, Case{200, 10, 10, 2.0},
        Case{50, 100, 100, 0.625}, Case{50, 200, 300, 0.625 - 0.06}, Case{0, 10000, 10, 0.001}}) {
    const int reference = c.originalWidth == 10000 ? 10 : 100;
    EXPECT_DOUBLE_EQ(ScaleFromPercentage(c.percent, c.originalWidth, c.originalHeight, reference, reference),
                     c.scale)
        << c.percent << "% of " << c.originalWidth << "x" << c.originalHeight;
  }
}

}  // namespace
