// Random edit sessions, checked after every step against a plain model of the edit
// history that keeps whole copies: for each level whether it holds the drawing layer
// and, if it does, the layer as the level's edit left it, and what the host reads of
// the state the level gives back. The model follows the history's rules and knows
// nothing of how the editor keeps its levels, so any way of keeping them must show the
// same pictures after every step.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iomanip>
#include <map>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "platform/raster.h"
#include "test_support.h"

namespace {

using platform::raster::PixelOf;

constexpr std::uint32_t kKeyPixel = PixelOf(kDrawingLayerKeyColor);
constexpr std::uint32_t kWhitePixel = 0xFFFFFF;
// The history keeps this many levels; a commit beyond them gives up the oldest.
constexpr std::size_t kLevelsKept = 10;

// Rows of 0x00RRGGBB pixels, top row first.
struct Pixels {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> rows;

  static Pixels Filled(int width, int height, std::uint32_t pixel) {
    return Pixels{width, height, std::vector<std::uint32_t>(static_cast<std::size_t>(width * height), pixel)};
  }
  std::uint32_t& at(int x, int y) { return rows[static_cast<std::size_t>(y * width + x)]; }
  std::uint32_t at(int x, int y) const { return rows[static_cast<std::size_t>(y * width + x)]; }
  bool operator==(const Pixels&) const = default;
};

// Read through GetDIBits rather than by taking the raster's pixels in place: that
// would pin the raster, which stops it sharing rows and so changes the storage the
// accounting test measures.
Pixels ReadBitmap(HBITMAP bitmap) {
  Pixels pixels;
  BITMAP header{};
  if (bitmap == nullptr || !GetObjectA(bitmap, sizeof header, &header)) return pixels;
  pixels = Pixels::Filled(header.bmWidth, header.bmHeight, 0);
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = header.bmWidth;
  info.bmiHeader.biHeight = -header.bmHeight;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  HDC dc = CreateCompatibleDC(nullptr);
  GetDIBits(dc, bitmap, 0, static_cast<UINT>(header.bmHeight), pixels.rows.data(), &info, DIB_RGB_COLORS);
  DeleteDC(dc);
  for (std::uint32_t& p : pixels.rows) p &= 0xFFFFFF;
  return pixels;
}

std::string Hex(std::uint32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "%06X", value);
  return text;
}

// "" when equal, otherwise where they first differ.
std::string Difference(const char* what, const Pixels& expected, const Pixels& actual) {
  std::ostringstream out;
  if (expected.width != actual.width || expected.height != actual.height) {
    out << what << " is " << actual.width << "x" << actual.height << ", expected " << expected.width << "x"
        << expected.height;
    return out.str();
  }
  for (int y = 0; y < expected.height; ++y) {
    for (int x = 0; x < expected.width; ++x) {
      if (expected.at(x, y) != actual.at(x, y)) {
        out << what << " differs first at (" << x << "," << y << "): " << Hex(actual.at(x, y))
            << ", expected " << Hex(expected.at(x, y));
        return out.str();
      }
    }
  }
  return "";
}

std::string RectText(const RECT& r) {
  return "[" + std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
         std::to_string(r.bottom) + "]";
}

// Every field, exactly: equal texts are equal settings.
std::string SettingsText(const AdjustmentSettings& s) {
  std::ostringstream out;
  out << std::setprecision(17) << "b" << s.brightness << " c" << s.contrast << " h" << s.hue << " s"
      << s.saturation << " g" << s.redGamma << "," << s.greenGamma << "," << s.blueGamma << " i" << s.invert
      << " gr" << s.gray << " sh" << s.sharpenSteps << " sm" << s.smoothSteps << " w" << s.whitenSteps
      << " bl" << s.blend;
  return out.str();
}

// What a level gives back when it is restored, as the host reads it, written out
// whole in `text`. The scroll position is kept too: a level with the drawing layer
// scrolls back to it.
struct LevelState {
  RECT imageRect{};
  POINT scroll{};
  AdjustmentSettings settings;
  std::string text;

  static LevelState Of(const EditorState& s) {
    std::ostringstream text;
    text << "image " << RectText(s.imageRect) << " displayed " << s.displayed.cx << "x" << s.displayed.cy
         << " view " << s.view.cx << "x" << s.view.cy << " objects";
    for (const ObjectState& o : s.objects) {
      text << " {" << o.slot << " kind " << o.kind << " " << o.x << "," << o.y << " " << o.width << "x"
           << o.height << (o.selected ? " sel" : "") << "}";
    }
    text << " z-order";
    for (int slot : s.zOrder) text << " " << slot;
    text << " selected " << s.selectedObject << " frame " << s.frame << " settings "
         << SettingsText(s.settings);
    return LevelState{s.imageRect, s.scroll, s.settings, text.str()};
  }
};

// The reference history: whole copies, a plain list, the rules as they read.
struct ReferenceLevel {
  bool keepsLayer = false;
  Pixels layer;  // as committed, then as a tool's copy at a release left it
  LevelState state;
};

class ReferenceHistory {
 public:
  int count() const { return static_cast<int>(levels_.size()); }
  int index() const { return index_; }

  // The redo levels go, then the oldest level when the history is full.
  void Commit(ReferenceLevel level) {
    levels_.resize(static_cast<std::size_t>(index_ + 1));
    if (shown_ > index_) shown_ = -1;
    if (levels_.size() == kLevelsKept) {
      levels_.erase(levels_.begin());
      shown_ = shown_ > 0 ? shown_ - 1 : -1;
    }
    levels_.push_back(std::move(level));
    index_ = count() - 1;
    if (levels_.back().keepsLayer) shown_ = index_;
  }
  // The level now current, or null when the index cannot move.
  const ReferenceLevel* Undo() { return index_ > 0 ? Restore(index_ - 1) : nullptr; }
  const ReferenceLevel* Redo() { return index_ < count() - 1 ? Restore(index_ + 1) : nullptr; }
  void Clear() {
    levels_.clear();
    index_ = -1;
    shown_ = -1;
  }
  // A tool's copy of the finished drawing layer into the snapshot DC: it lands in the
  // level last committed or restored with a layer, whichever that is now, or nowhere
  // once that level is gone.
  void CopyIntoShownLevel(const Pixels& layer) {
    if (shown_ >= 0) levels_[static_cast<std::size_t>(shown_)].layer = layer;
  }

 private:
  const ReferenceLevel* Restore(int index) {
    index_ = index;
    if (levels_[static_cast<std::size_t>(index)].keepsLayer) shown_ = index;
    return &levels_[static_cast<std::size_t>(index)];
  }

  std::vector<ReferenceLevel> levels_;
  int index_ = -1;
  int shown_ = -1;  // the level whose layer the snapshot DC shows
};

// A picture of mixed colours, different for each seed, so that a rebuild that takes
// the wrong rows or the wrong settings shows.
std::vector<COLORREF> PatternPicture(int width, int height, std::uint32_t seed) {
  std::vector<COLORREF> colors;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int block = ((x / 7) + (y / 5) + static_cast<int>(seed)) % 3;
      colors.push_back(RGB((x * 9 + static_cast<int>(seed) * 13) & 0xFF, (y * 11 + block * 60) & 0xFF,
                           ((x + y) * 5 + 40) & 0xFF));
    }
  }
  return colors;
}

// One random edit session in one editor. Every step is written to the log as it is
// taken, so a failing seed can be replayed and read.
class Session {
 public:
  Session(std::uint32_t seed, int windowWidth, int windowHeight, int pictureWidth, int pictureHeight)
      : seed_(seed), random_(seed), live_(windowWidth, windowHeight) {
    WritePicture(0, pictureWidth, pictureHeight);
    const int otherWidth = Between(40, 90);
    WritePicture(1, otherWidth, Between(30, 70));
    std::vector<COLORREF> icon;
    for (int i = 0; i < 12 * 10; ++i) icon.push_back(i % 12 < 6 ? RGB(200, 40, 160) : RGB(30, 170, 220));
    iconPath_ = live_.files.Write("icon.bmp", BitmapFile(12, 10, icon));
  }

  CImageEditWnd& editor() { return *live_.editor; }
  const std::string& log() const { return log_; }
  std::uint32_t seed() const { return seed_; }
  int Between(int low, int high) {
    return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1));
  }
  bool OneIn(int n) { return random_() % static_cast<unsigned>(n) == 0; }

  // Loads the first picture and takes what the model starts from.
  std::string Start() {
    LoadPicture(0);
    return Check();
  }

  // One step drawn from the mix below, of any kind or only of the kinds that leave
  // the picture, its layout and the objects as they are; "" when every check held.
  std::string RandomStep(bool anyKind) {
    struct Choice {
      int weight;
      void (Session::*step)();
      bool keepsLayout;
    };
    static constexpr Choice kSteps[] = {
        {5, &Session::FreehandStroke, true},
        {2, &Session::ShapeDrag, true},
        {2, &Session::Curve, true},
        {1, &Session::FloodFill, true},
        {2, &Session::AirbrushSpray, true},
        {3, &Session::Adjustment, true},
        {1, &Session::Flip, true},
        {2, &Session::InsertIcon, false},
        {3, &Session::MoveObject, false},
        {1, &Session::SetImageWidth, false},
        {1, &Session::LoadOtherPicture, false},
        {1, &Session::Scroll, false},
        {6, &Session::Undo, true},
        {3, &Session::Redo, true},
        {1, &Session::ClearEither, false},
    };
    int total = 0;
    for (const Choice& c : kSteps) total += anyKind || c.keepsLayout ? c.weight : 0;
    int pick = Between(0, total - 1);
    problem_.clear();
    for (const Choice& c : kSteps) {
      if (!anyKind && !c.keepsLayout) continue;
      if (pick < c.weight) {
        (this->*c.step)();
        break;
      }
      pick -= c.weight;
    }
    return problem_.empty() ? Check() : problem_;
  }

  // Steps a test calls by name.
  void FreehandStroke() {
    const int tool = Between(0, 2);
    const int size = Between(1, 7);
    const char* names[] = {"pen", "brush", "eraser"};
    if (tool == 0) editor().SetPen(size);
    if (tool == 1) editor().SetBrush(size);
    if (tool == 2) editor().SetEraser(size);
    const std::string color = PickColor();
    // Some strokes run across a boundary of the raster's bands of sixteen rows.
    const bool acrossBands = OneIn(3);
    const int moves = Between(1, 3);
    Stroke(
        std::string(names[tool]) + " " + std::to_string(size) + " " + color + (acrossBands ? " across" : ""),
        moves, acrossBands);
  }
  void ShapeDrag() {
    const int style = Between(3, 6);
    editor().SetShape(style);
    const std::string color = PickColor();
    Stroke("shape " + std::to_string(style) + " " + color, 2, OneIn(2));
  }
  // A curve's three drags. Undo with another tool chosen leaves the curve half built,
  // so its last drag copies the layer into an older level's snapshot, or into the
  // curve's own level after it became a redo level.
  void Curve() {
    editor().SetShape(2);
    const std::string color = PickColor();
    Stroke("curve " + color, 1, false);
    if (OneIn(2)) {
      if (!Midway()) return;
      editor().SetPen(2);
      Log("SetPen 2");
      Undo();
      if (!Midway()) return;
      editor().SetShape(2);
    }
    for (int drag = 0; drag < 2; ++drag) {
      if (!Midway()) return;
      Stroke("curve " + color, 1, OneIn(2));
    }
  }
  void FloodFill() {
    editor().FillWithSelectedColor();
    Stroke("fill " + PickColor(), 0, false);
  }
  // The spray goes on while the button is held, on the clock.
  void AirbrushSpray() {
    const int size = Between(2, 12);
    editor().SetAirBrush(size);
    const int hold = Between(0, 1300);
    const std::string color = PickColor();
    const int moves = Between(0, 1);
    Stroke("airbrush " + std::to_string(size) + " " + color + " hold " + std::to_string(hold), moves, false,
           static_cast<unsigned>(hold));
  }

  void Adjustment() {
    struct Setter {
      const char* name;
      void (CImageEditWnd::*call)(int);
      void (*store)(AdjustmentSettings&, int);
    };
    static constexpr Setter kSetters[] = {
        {"BrightenImage", &CImageEditWnd::BrightenImage,
         [](AdjustmentSettings& s, int a) { s.brightness = a - 100; }},
        {"ContrastImage", &CImageEditWnd::ContrastImage,
         [](AdjustmentSettings& s, int a) { s.contrast = a - 100; }},
        {"HueImage", &CImageEditWnd::HueImage, [](AdjustmentSettings& s, int a) { s.hue = a * 1.8; }},
        {"SaturateImage", &CImageEditWnd::SaturateImage,
         [](AdjustmentSettings& s, int a) { s.saturation = a * 0.01; }},
    };
    const EditorState before = editor().State();
    const int which = Between(0, 4);
    const int argument = 100 + 40 * Between(-2, 2);
    AdjustmentSettings next = before.settings;
    if (which == 4) {
      next.invert = OneIn(2);
      editor().InvertImage(next.invert);
      Log(std::string("InvertImage ") + (next.invert ? "1" : "0"));
    } else {
      (editor().*kSetters[which].call)(argument);
      kSetters[which].store(next, argument);
      Log(std::string(kSetters[which].name) + " " + std::to_string(argument));
    }
    // A setter given the stored value changes nothing and records nothing.
    if (next == before.settings) return;
    // Invert is the only filter these sessions set, and it runs after the colour pass
    // both when it is set and in every rebuild, so the setter's picture is the
    // rebuild's.
    ExpectRebuild(before.imageRect, next);
    Commit(false, LevelState::Of(editor().State()));
  }

  // An effect on the image surface alone: the rows of the image rectangle turn upside
  // down across the surface's whole width, and the level keeps no layer.
  void Flip() {
    Log("FlipImage");
    const EditorState before = editor().State();
    editor().FlipImage();
    const RECT& r = before.imageRect;
    const int top = std::max<int>(r.top, 0);
    const int bottom = std::min<int>(r.bottom, image_.height);
    if (top == r.top && bottom == r.bottom) {
      for (int k = 0; k < (bottom - top) / 2; ++k) {
        for (int x = 0; x < image_.width; ++x) std::swap(image_.at(x, top + k), image_.at(x, bottom - 1 - k));
      }
    } else {
      // A rectangle beyond the surface: only the history is predicted.
      image_ = ReadBitmap(editor().SurfaceBitmap(SurfaceName::Image));
    }
    Commit(false, LevelState::Of(editor().State()));
  }

  void InsertIcon() {
    const EditorState before = editor().State();
    const RECT client = Client();
    const int x = OneIn(3) ? -1 : Between(0, std::max<int>(client.right - 12, 0));
    const int y = OneIn(3) ? -1 : Between(0, std::max<int>(client.bottom - 10, 0));
    Log("InsertIcon " + std::to_string(x) + " " + std::to_string(y));
    editor().InsertIcon(x, y, iconPath_.c_str());
    // Five objects fill every slot; a sixth is refused.
    if (before.objects.size() < 5) Commit(false, LevelState::Of(editor().State()));
  }

  // With no tool, a drag from the middle of an object moves it; its release records a
  // level without the layer.
  void MoveObject() {
    const EditorState before = editor().State();
    if (before.objects.empty()) return Log("move object: there is none");
    const ObjectState& object =
        before.objects[static_cast<std::size_t>(Between(0, static_cast<int>(before.objects.size()) - 1))];
    const RECT inner = Inner(before);
    const POINT from{object.x + object.width / 2, object.y + object.height / 2};
    if (!PtInRect(&inner, from)) return Log("move object: its middle is out of reach");
    const int toX = Between(inner.left, inner.right - 1);
    const POINT to{toX, Between(inner.top, inner.bottom - 1)};
    Log("move object " + std::to_string(object.slot) + " (" + std::to_string(from.x) + "," +
        std::to_string(from.y) + ")->(" + std::to_string(to.x) + "," + std::to_string(to.y) + ")");
    editor().SetNothing();
    live_.Mouse(WM_LBUTTONDOWN, from.x, from.y);
    live_.Mouse(WM_MOUSEMOVE, to.x, to.y);
    live_.Mouse(WM_LBUTTONUP, to.x, to.y);
    Commit(false, LevelState::Of(editor().State()));
  }

  // New surfaces for the new size, the strokes stretched with the image, and no level.
  void SetImageWidth() {
    const int choices[] = {-100, -150, -130, -70, sizes_[current_].cx - 9, sizes_[current_].cx + 20};
    const int width = choices[Between(0, 5)];
    Log("SetImageWidth " + std::to_string(width));
    editor().SetImageWidth(width);
    ExpectNewSurfaces();
    layer_ = ReadBitmap(editor().SurfaceBitmap(SurfaceName::Drawing));
  }

  void LoadOtherPicture() { LoadPicture(OneIn(3) ? current_ : 1 - current_); }

  void Scroll() {
    const EditorState s = editor().State();
    if (!s.hScrollShown && !s.vScrollShown) return Log("scroll: no bars");
    const int h = Between(0, s.displayed.cx);
    const int v = Between(0, s.displayed.cy);
    Log("scroll " + std::to_string(h) + " " + std::to_string(v));
    if (s.hScrollShown) editor().OnHScroll(SB_THUMBPOSITION, static_cast<UINT>(h), nullptr);
    if (s.vScrollShown) editor().OnVScroll(SB_THUMBPOSITION, static_cast<UINT>(v), nullptr);
  }

  void Undo() { Move("Undo", &CImageEditWnd::Undo, &ReferenceHistory::Undo); }
  void Redo() { Move("Redo", &CImageEditWnd::Redo, &ReferenceHistory::Redo); }
  void Move(const char* what, void (CImageEditWnd::*move)(),
            const ReferenceLevel* (ReferenceHistory::*model)()) {
    Log(what);
    const EditorState before = editor().State();
    (editor().*move)();
    Restored((history_.*model)(), before);
  }

  // The strokes and every level go; 0 also shows the picture without adjustments.
  void ClearEither() { Clear(Between(0, 1)); }
  void Clear(long bImage) {
    Log("Clear " + std::to_string(bImage));
    const EditorState before = editor().State();
    editor().Clear(bImage);
    history_.Clear();
    layer_ = Pixels::Filled(layer_.width, layer_.height, kKeyPixel);
    // The plain picture is what a rebuild with settings that change nothing shows.
    if (bImage == 0) ExpectRebuild(before.imageRect, AdjustmentSettings{});
  }

  // Everything the model predicts, compared with what the editor has now; "" when
  // all of it holds.
  std::string Check() {
    platform::FlushPaint(live_.hostWindow);
    const EditorState s = editor().State();
    std::ostringstream out;
    if (s.historyCount != history_.count() || s.historyIndex != history_.index()) {
      out << "history " << s.historyCount << "/" << s.historyIndex << ", expected " << history_.count() << "/"
          << history_.index();
      return out.str();
    }
    const Pixels layer = ReadBitmap(editor().SurfaceBitmap(SurfaceName::Drawing));
    std::string problem = Difference("drawing layer", layer_, layer);
    if (!problem.empty()) return problem;
    const Pixels image = ReadBitmap(editor().SurfaceBitmap(SurfaceName::Image));
    if (rebuild_) TakeRebuild(image);
    problem = Difference("image surface", image_, image);
    if (!problem.empty()) return problem;
    if (restored_) {
      const std::string shown = LevelState::Of(s).text;
      const std::string level = restored_->text;
      restored_.reset();
      if (shown != level) return "restored level: " + shown + "\n  the level has: " + level;
    }
    if (scrollBack_) {
      // The bars are set for the layer's size first, which puts both positions at 0
      // and measures the view anew; then each axis scrolls to the level's position,
      // limited to 0 and then to the size shown before the restore less the view
      // (that limit last, so a picture shown smaller than the view before the restore
      // gives a position below 0).
      const RECT client = Client();
      auto limited = [](int position, int displayed, int view) {
        return position == 0 ? 0 : std::min(std::max(position, 0), displayed - view);
      };
      scroll_ = POINT{limited(scrollBack_->level.x, scrollBack_->displayed.cx, client.right),
                      limited(scrollBack_->level.y, scrollBack_->displayed.cy, client.bottom)};
      scrollBack_.reset();
    }
    if (scroll_) {
      if (scroll_->x != s.scroll.x || scroll_->y != s.scroll.y) {
        out << "scroll " << s.scroll.x << "," << s.scroll.y << ", expected " << scroll_->x << ","
            << scroll_->y;
        return out.str();
      }
      scroll_.reset();
    }
    return ShownPicture(s, layer, image);
  }

 private:
  void WritePicture(int which, int width, int height) {
    const std::vector<COLORREF> colors =
        PatternPicture(width, height, seed_ * 2 + static_cast<std::uint32_t>(which));
    paths_[which] =
        live_.files.Write("picture" + std::to_string(which) + ".bmp", BitmapFile(width, height, colors));
    sizes_[which] = SIZE{width, height};
  }

  // The checks in the middle of a step of several parts; false (the problem kept for
  // the step's report) when one failed.
  bool Midway() {
    problem_ = Check();
    return problem_.empty();
  }

  void Log(const std::string& step) { log_ += "  " + step + "\n"; }

  RECT Client() {
    RECT client{};
    GetClientRect(editor().m_hWnd, &client);
    return client;
  }
  // Where a drag may go without scrolling the view by itself: ten pixels clear of an
  // edge that has a scroll bar.
  RECT Inner(const EditorState& s) {
    RECT inner = Client();
    if (s.hScrollShown) inner = RECT{inner.left + 10, inner.top, inner.right - 10, inner.bottom};
    if (s.vScrollShown) inner = RECT{inner.left, inner.top + 10, inner.right, inner.bottom - 10};
    return inner;
  }

  std::string PickColor() {
    static const char* kColors[] = {"FF0000", "00A040", "2040FF", "FFFF00", "000000", "7F7F7F"};
    const char* color = kColors[Between(0, 5)];
    editor().SetColor(color);
    return color;
  }

  // A press inside the visible image, which records a level holding the layer as it
  // is, some moves, the clock held for `hold` ms, and the release, which copies the
  // finished layer into the snapshot DC: so the level ends up holding the layer after
  // the stroke. Of a curve's three drags only the first records a level and only the
  // last copies.
  void Stroke(const std::string& what, int moves, bool acrossBands, unsigned hold = 0) {
    const EditorState before = editor().State();
    const bool curve = before.toolMode == static_cast<int>(ToolMode::Shape) &&
                       before.shapeStyle == static_cast<int>(ShapeStyle::Curve);
    const RECT& image = before.imageRect;
    const RECT visible{image.left - before.scroll.x, image.top - before.scroll.y,
                       image.right - before.scroll.x, image.bottom - before.scroll.y};
    const RECT inner = Inner(before);
    RECT area{};
    if (!IntersectRect(&area, &visible, &inner)) return Log(what + ": no image to press on");
    auto point = [&] {
      const int x = Between(area.left, area.right - 1);
      POINT p{x, Between(area.top, area.bottom - 1)};
      if (acrossBands) {
        // A row just above or below a band boundary of the surfaces, seen in the
        // window.
        const int band = Between(1, 4);
        const int boundary = 16 * band + Between(-3, 2) - before.scroll.y;
        if (boundary >= area.top && boundary < area.bottom) p.y = boundary;
      }
      return p;
    };
    std::string step = what;
    const POINT down = point();
    step += " down(" + std::to_string(down.x) + "," + std::to_string(down.y) + ")";
    live_.Mouse(WM_LBUTTONDOWN, down.x, down.y);
    if (!curve || before.curveStage == 0) Commit(true, LevelState::Of(before));
    POINT last = down;
    for (int i = 0; i < moves; ++i) {
      last = point();
      step += " move(" + std::to_string(last.x) + "," + std::to_string(last.y) + ")";
      live_.Mouse(WM_MOUSEMOVE, last.x, last.y);
    }
    if (hold > 0) platform::AdvanceClock(hold);
    live_.Mouse(WM_LBUTTONUP, last.x, last.y);
    Log(step);
    layer_ = ReadBitmap(editor().SurfaceBitmap(SurfaceName::Drawing));
    if (!curve || before.curveStage == 2) history_.CopyIntoShownLevel(layer_);
  }

  void Commit(bool keepsLayer, LevelState state) {
    history_.Commit(ReferenceLevel{keepsLayer, keepsLayer ? layer_ : Pixels{}, std::move(state)});
  }

  void LoadPicture(int which) {
    Log("SetImage picture" + std::to_string(which) + " " + std::to_string(sizes_[which].cx) + "x" +
        std::to_string(sizes_[which].cy));
    current_ = which;
    editor().SetImage(paths_[which].c_str());
    ExpectNewSurfaces();
    layer_ = Pixels::Filled(image_.width, image_.height, kKeyPixel);
    Commit(true, LevelState::Of(editor().State()));
  }

  // Laying the picture out makes the three surfaces anew at one size, white around
  // the picture, which is rebuilt with the stored settings.
  void ExpectNewSurfaces() {
    const EditorState s = editor().State();
    HBITMAP surface = editor().SurfaceBitmap(SurfaceName::Image);
    BITMAP header{};
    GetObjectA(surface, sizeof header, &header);
    image_ = Pixels::Filled(header.bmWidth, header.bmHeight, kWhitePixel);
    ExpectRebuild(s.imageRect, s.settings);
  }

  // The adjusted rebuild refills the image rectangle from the current picture with
  // those settings and leaves the rest of the surface alone. What a rebuild gives for
  // a picture, a place and settings is learnt the first time it is seen and must come
  // out the same every later time.
  void ExpectRebuild(const RECT& rect, const AdjustmentSettings& settings) {
    rebuild_ = Rebuild{rect, settings};
  }
  void TakeRebuild(const Pixels& image) {
    const Rebuild r = *rebuild_;
    rebuild_.reset();
    RECT surface{0, 0, image_.width, image_.height};
    RECT part{};
    if (!IntersectRect(&part, &surface, &r.rect)) return;
    std::ostringstream key;
    key << current_ << " " << r.rect.right - r.rect.left << "x" << r.rect.bottom - r.rect.top << " "
        << SettingsText(r.settings);
    // A rectangle reaching beyond the surface is cut, so where it lies matters.
    if (RectText(part) != RectText(r.rect))
      key << " at " << RectText(r.rect) << " in " << image_.width << "x" << image_.height;
    auto known = rebuilds_.find(key.str());
    if (known == rebuilds_.end() && image.width == image_.width && image.height == image_.height) {
      Pixels block = Pixels::Filled(part.right - part.left, part.bottom - part.top, 0);
      for (int y = part.top; y < part.bottom; ++y) {
        for (int x = part.left; x < part.right; ++x) block.at(x - part.left, y - part.top) = image.at(x, y);
      }
      known = rebuilds_.emplace(key.str(), std::move(block)).first;
    }
    if (known == rebuilds_.end()) return;
    for (int y = part.top; y < part.bottom; ++y) {
      for (int x = part.left; x < part.right; ++x)
        image_.at(x, y) = known->second.at(x - part.left, y - part.top);
    }
  }

  // A restore gives back the level's record; a level with the layer also brings back
  // the layer and the scroll position, one without leaves both as they are.
  void Restored(const ReferenceLevel* level, const EditorState& before) {
    if (level == nullptr) return;
    restored_ = level->state;
    if (level->keepsLayer) {
      layer_ = level->layer;
      scrollBack_ = ScrollBack{level->state.scroll, before.displayed};
    } else {
      scroll_ = before.scroll;
    }
    ExpectRebuild(level->state.imageRect, level->state.settings);
  }

  // The window shows the composition: the drawing layer over the image surface, its
  // key colour transparent, scrolled by the scroll position. Objects and their frames
  // are drawn over it and left out here; where they are is part of the levels.
  std::string ShownPicture(const EditorState& s, const Pixels& layer, const Pixels& image) {
    const Pixels shown = ReadBitmap(platform::HostFrame(live_.hostWindow));
    BITMAP composition{};
    GetObjectA(editor().SurfaceBitmap(SurfaceName::Composition), sizeof composition, &composition);
    const RECT client = Client();
    const int width = std::min({composition.bmWidth, layer.width, image.width});
    const int height = std::min({composition.bmHeight, layer.height, image.height});
    for (int y = 0; y < client.bottom && y < shown.height; ++y) {
      for (int x = 0; x < client.right && x < shown.width; ++x) {
        const int sx = x + s.scroll.x;
        const int sy = y + s.scroll.y;
        // A restore may leave a scroll position below 0 (see Check); the window then
        // shows nothing of the surfaces left of or above it.
        if (sx < 0 || sy < 0 || sx >= width || sy >= height) continue;
        const bool underObject = std::any_of(s.objects.begin(), s.objects.end(), [&](const ObjectState& o) {
          return x >= o.x - 4 && x < o.x + o.width + 4 && y >= o.y - 4 && y < o.y + o.height + 4;
        });
        if (underObject) continue;
        const std::uint32_t expected = layer.at(sx, sy) != kKeyPixel ? layer.at(sx, sy) : image.at(sx, sy);
        if (shown.at(x, y) != expected) {
          std::ostringstream out;
          out << "window shows " << Hex(shown.at(x, y)) << " at (" << x << "," << y << "), expected "
              << Hex(expected);
          return out.str();
        }
      }
    }
    return "";
  }

  struct Rebuild {
    RECT rect;
    AdjustmentSettings settings;
  };

  std::uint32_t seed_;
  std::mt19937 random_;
  LiveEditor live_;
  std::string paths_[2];
  SIZE sizes_[2]{};
  std::string iconPath_;
  int current_ = 0;
  std::string log_;
  std::string problem_;  // what a step's middle check found

  ReferenceHistory history_;
  Pixels layer_;  // the drawing layer the editor must have now
  Pixels image_;  // the image surface likewise
  std::optional<Rebuild> rebuild_;
  std::optional<LevelState> restored_;
  std::optional<POINT> scroll_;
  struct ScrollBack {
    POINT level;
    SIZE displayed;
  };
  std::optional<ScrollBack> scrollBack_;
  std::map<std::string, Pixels> rebuilds_;
};

class HistorySequenceTest : public HostedTest {};

std::string Report(const Session& session, int step, const std::string& problem) {
  return "seed " + std::to_string(session.seed()) + ", after step " + std::to_string(step) + ": " + problem +
         "\nsteps:\n" + session.log();
}

TEST_F(HistorySequenceTest, RandomSessionsMatchAHistoryOfWholeCopies) {
  for (std::uint32_t seed = 1; seed <= 40; ++seed) {
    const platform::GdiCounts objectsBefore = platform::LiveGdiObjects();
    const std::size_t bytesBefore = platform::raster::LivePixelBytes();
    {
      // Windows a little larger and a little smaller than the pictures: some views
      // scroll, some show white around the picture.
      std::mt19937 sizes(seed * 7919);
      auto between = [&](int low, int high) {
        return low + static_cast<int>(sizes() % unsigned(high - low + 1));
      };
      const int pictureWidth = between(40, 90);
      const int pictureHeight = between(30, 70);
      Session session(seed, pictureWidth + between(-15, 15), pictureHeight + between(-12, 12), pictureWidth,
                      pictureHeight);
      std::string problem = session.Start();
      for (int step = 1; step <= 30 && problem.empty(); ++step) {
        problem = session.RandomStep(true);
        if (!problem.empty()) ADD_FAILURE() << Report(session, step, problem);
      }
      if (!problem.empty()) continue;
    }
    // Destroying the editor gives back every object and every pixel its levels held.
    EXPECT_EQ(platform::LiveGdiObjects().total(), objectsBefore.total()) << "seed " << seed;
    EXPECT_EQ(platform::raster::LivePixelBytes(), bytesBefore) << "seed " << seed;
  }
}

// The tools keep a drawing pen and a drawing brush of their own, made by the tool
// setters; the same setters before each count leave the same ones alive, so that only
// what the history keeps can differ.
void SameTools(CImageEditWnd& editor) {
  editor.SetShape(5);
  editor.SetPen(2);
}

// What Clear and the editor's end give back. Clear keeps the surfaces, the picture and
// the tools, so the point to compare with is one with those and no history. Loading
// leaves level 0, whose keeping costs whatever the history's way of storing it costs,
// so a Clear right after loading can only give back, never take: at most what was
// alive then. From there on, every later Clear must come back to exactly that point,
// whatever the levels held in between. The picture fills the window, so each rebuild
// writes every row of the image surface and the surfaces' storage is the same after
// each Clear(0) whatever the steps did to the image.
TEST_F(HistorySequenceTest, ClearAndTheEditorsEndGiveBackWhatTheLevelsHeld) {
  for (std::uint32_t seed = 101; seed <= 110; ++seed) {
    const int objectsBefore = platform::LiveGdiObjects().total();
    const std::size_t bytesBefore = platform::raster::LivePixelBytes();
    {
      const int width = 40 + static_cast<int>(seed % 5) * 9;
      const int height = 30 + static_cast<int>(seed % 4) * 11;
      Session session(seed, width, height, width, height);
      std::string problem = session.Start();
      ASSERT_EQ(problem, "") << Report(session, 0, problem);
      SameTools(session.editor());
      const int objectsLoaded = platform::LiveGdiObjects().total();
      const std::size_t bytesLoaded = platform::raster::LivePixelBytes();
      session.Clear(0);
      problem = session.Check();
      ASSERT_EQ(problem, "") << Report(session, 0, problem);
      const int objectsCleared = platform::LiveGdiObjects().total();
      const std::size_t bytesCleared = platform::raster::LivePixelBytes();
      EXPECT_LE(objectsCleared, objectsLoaded) << "seed " << seed;
      EXPECT_LE(bytesCleared, bytesLoaded) << "seed " << seed;

      for (int step = 1; step <= 25 && problem.empty(); ++step) {
        problem = session.RandomStep(false);
        if (!problem.empty()) ADD_FAILURE() << Report(session, step, problem);
      }
      if (!problem.empty()) continue;
      SameTools(session.editor());
      session.Clear(0);
      problem = session.Check();
      ASSERT_EQ(problem, "") << Report(session, 26, problem);
      EXPECT_EQ(platform::LiveGdiObjects().total(), objectsCleared) << Report(session, 26, "objects");
      EXPECT_EQ(platform::raster::LivePixelBytes(), bytesCleared) << Report(session, 26, "pixel bytes");
      // Levels again, to be given back by the editor's end.
      for (int step = 27; step <= 32 && problem.empty(); ++step) problem = session.RandomStep(false);
      ASSERT_EQ(problem, "") << Report(session, 32, problem);
    }
    EXPECT_EQ(platform::LiveGdiObjects().total(), objectsBefore) << "seed " << seed;
    EXPECT_EQ(platform::raster::LivePixelBytes(), bytesBefore) << "seed " << seed;
  }
}

}  // namespace
