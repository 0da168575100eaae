// A whole control, as a hostile page or a careless script would drive it: random
// sequences of interface calls (any of the methods, by name or by DISPID, with any
// arguments, wrong types and counts included) and input events (mouse drags, keys,
// scroll bars, timer ticks, focus and capture loss, failed graphics creations,
// graphics memory running short) over small pictures in windows from 1 x 1 up. The
// editor's state, taken whole as a host takes it, is checked after every step against
// what the control promises (see StateChecks); after each sequence the control is
// destroyed, and every graphics object, window, menu, cursor and timer it made must be
// gone.
//
// Most of the time goes where faults hide: tools and their drags, drags cut short by
// another call, extreme setter values and tiny windows. Values whose cost grows with
// their size (filter steps, spray sizes, saved sizes) are offered only up to small
// ones, so that a sequence takes milliseconds and a run tries thousands.
//
// What is exercised is data: the methods come from the dispatch table, the strings,
// integers and events from the tables below. A new feature needs at most a line in
// one of them (a string its parameters understand, an event that reaches it).
//
// Everything the control writes goes into a private temp folder (TMPDIR is set at
// start-up), emptied and given fresh pictures before each sequence, so that a
// sequence runs the same whatever ran before it.
#include <arpa/inet.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "control/dispatch_table.h"
#include "control/image_edit_ctrl.h"
#include "editor/editor_state.h"
#include "imageio/url_download.h"
#include "platform/graphics_memory.h"
#include "platform/platform.h"

namespace {

namespace fs = std::filesystem;

constexpr int kMaxSteps = 64;
constexpr int kMaxWindowSide = 96;
// What the history and the object slots hold at most.
constexpr int kHistoryLevels = 10;
constexpr int kObjectSlots = 5;

// A 24-bit bitmap file of width x height with a colour gradient.
std::vector<char> GradientBitmapFile(int width, int height) {
  const int stride = (width * 3 + 3) & ~3;
  const int size = 54 + stride * height;
  std::vector<char> file(static_cast<std::size_t>(size), 0);
  auto put32 = [&file](int at, int value) {
    for (int i = 0; i < 4; ++i) file[static_cast<std::size_t>(at + i)] = static_cast<char>(value >> (8 * i));
  };
  file[0] = 'B';
  file[1] = 'M';
  put32(2, size);
  put32(10, 54);
  put32(14, 40);
  put32(18, width);
  put32(22, height);
  file[26] = 1;
  file[28] = 24;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      char* pixel = &file[static_cast<std::size_t>(54 + y * stride + x * 3)];
      pixel[0] = static_cast<char>(x * 255 / width);
      pixel[1] = static_cast<char>(y * 255 / height);
      pixel[2] = static_cast<char>((x + y) * 7);
    }
  }
  return file;
}

// A port on 127.0.0.1 where nobody listens, so that a download is refused at once.
int ClosedPort() {
  const int probe = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  ::bind(probe, reinterpret_cast<sockaddr*>(&address), sizeof address);
  ::getsockname(probe, reinterpret_cast<sockaddr*>(&address), &length);
  ::close(probe);
  return ntohs(address.sin_port);
}

struct Environment {
  std::string folder;  // the private temp folder, with a trailing '/'
  std::vector<std::string> strings;

  void ResetFolder() const {
    for (const auto& entry : fs::directory_iterator(folder)) fs::remove_all(entry.path());
    for (const auto& [name, width, height] : {std::tuple{"small.bmp", 16, 10}, std::tuple{"wide.bmp", 60, 12},
                                              std::tuple{"tall.bmp", 5, 40}, std::tuple{"dot.bmp", 1, 1}}) {
      const std::vector<char> file = GradientBitmapFile(width, height);
      std::ofstream(folder + name, std::ios::binary)
          .write(file.data(), static_cast<std::streamsize>(file.size()));
    }
  }
};

Environment& Env() {
  static Environment environment;
  return environment;
}

// The strings a host might pass: pictures that load, names that do not, the keywords
// and colour strings the methods know, save targets, and garbage.
std::vector<std::string> HostStrings(const std::string& folder) {
  return {
      folder + "small.bmp",
      folder + "wide.bmp",
      folder + "tall.bmp",
      folder + "dot.bmp",
      folder + "missing.png",
      folder,
      "",
      "DIALOG",
      "TRANSPARENT",
      "FF0000",
      "00ff00",
      "0000FF",
      "GGGGGG",
      "#FFFFFF",
      "12345678901234567890",
      "Arial,Italic,Bold,12,StrikeOut,Underline,FF0000",
      ",,,0,,,",
      "48656C6C6F",
      "\x01\x01"
      "abcdefgh"
      "48656C6C6F",
      "out.bmp",
      folder + "saved.bmp",
      folder + "no/such/folder/out.bmp",
      "\xff\xfe\x80 \x01\x7f\"\\%s%n",
      std::string(3000, 'x') + "\xC3\xA9\xE6\x96\x87",
      "http://127.0.0.1:" + std::to_string(ClosedPort()) + "/picture.png",
      "file:///etc/passwd",
      "ftp://127.0.0.1/x.bmp",
  };
}

void RemoveFolder() { fs::remove_all(Env().folder); }

constexpr std::array<int, 17> kIntegers{INT_MIN, INT_MIN + 1, -65536, -100, -1,   0,     1,       2,      3,
                                        90,      100,         255,    256,  1000, 65535, 1 << 20, INT_MAX};

int AnyInteger(FuzzedDataProvider& data) {
  switch (data.ConsumeIntegralInRange(0, 2)) {
    case 0:
      return data.PickValueInArray(kIntegers);
    case 1:
      return data.ConsumeIntegralInRange(-300, 300);
    default:
      return data.ConsumeIntegral<int>();
  }
}

// The integers offered to parameters by name: what means something to them, their
// edges and extremes. Where the work grows with the value (filter steps, spray and
// text-box sizes, saved and selected sizes) the positive values stop at about a
// hundred; pens keep their extremes, since the surfaces clip what they draw. Rows
// marked so also get any integer now and then.
struct ParameterValues {
  std::vector<std::string_view> names;
  std::vector<int> values;
  bool anyIntegerToo;
};
const std::vector<ParameterValues>& ValuesByParameter() {
  static const std::vector<ParameterValues> table{
      {{"nStep"}, {INT_MIN, -65536, -1, 0, 1, 2, 3, 5, 12}, false},
      {{"nEraserSize", "nPenSize", "nBrushSize"},
       {INT_MIN, -65536, -120, -17, -2, -1, 0, 1, 2, 3, 4, 9, 33, 120},
       false},
      // A spray's dots grow with the square of its size, either sign, whatever the
      // window.
      {{"nAirBrushSize"}, {-120, -17, -2, -1, 0, 1, 2, 3, 4, 9, 33, 120}, false},
      {{"nWidth", "nHeight"}, {INT_MIN, -1, 0, 1, 2, 3, 8, 41, 120}, false},
      {{"nTextStartX", "nTextStartY", "nTextEndX", "nTextEndY"}, {-7, -1, 0, 1, 2, 5, 23, 70}, false},
      {{"nImageWidth"},
       {INT_MIN, -201, -200, -199, -150, -100, -99, -50, -1, 0, 1, 2, 3, 7, 40, 65536, INT_MAX},
       true},
      {{"nScaleFactor"}, {INT_MIN, -5, 0, 1, 50, 99, 100, 101, 150, 200, 201, INT_MAX}, true},
      {{"nStartX", "nStartY", "nOffset"}, {INT_MIN, -3, -1, 0, 1, 2, 10, 40, INT_MAX}, true},
      {{"nDegree"}, {90, -90, 0, 180, 270, -270, INT_MIN, INT_MAX}, true},
      {{"nOrientation"}, {-2, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, true},
      {{"nTransparency", "nTexture"}, {-1, 0, 1, 50, 99, 100, 101}, true},
      {{"nShapeStyle"}, {-1, 0, 1, 2, 3, 4, 5, 6, 7}, true},
  };
  return table;
}

int IntegerFor(FuzzedDataProvider& data, std::string_view parameter) {
  for (const ParameterValues& entry : ValuesByParameter()) {
    if (std::find(entry.names.begin(), entry.names.end(), parameter) == entry.names.end()) continue;
    if (entry.anyIntegerToo && data.ConsumeIntegralInRange(0, 3) == 0) return AnyInteger(data);
    return entry.values[data.ConsumeIntegralInRange<std::size_t>(0, entry.values.size() - 1)];
  }
  return AnyInteger(data);
}

Variant AnyString(FuzzedDataProvider& data) {
  if (data.ConsumeIntegralInRange(0, 7) == 0) return Variant::String(data.ConsumeRandomLengthString(64));
  const auto& strings = Env().strings;
  return Variant::String(strings[data.ConsumeIntegralInRange<std::size_t>(0, strings.size() - 1)]);
}

// An argument for the parameter: mostly of its own type, now and then of another.
Variant Argument(FuzzedDataProvider& data, const ParamInfo& param) {
  if (data.ConsumeIntegralInRange(0, 15) == 0) {
    switch (data.ConsumeIntegralInRange(0, 3)) {
      case 0:
        return Variant();
      case 1:
        return Variant::Null();
      case 2:
        return Variant::Bool(data.ConsumeBool());
      default:
        return param.type == ParamType::String ? Variant::Int(IntegerFor(data, param.name)) : AnyString(data);
    }
  }
  if (param.type == ParamType::String) return AnyString(data);
  return Variant::Int(IntegerFor(data, param.name));
}

[[noreturn]] void Fail(const std::string& step, const char* what) {
  std::fprintf(stderr, "fuzz_control: after %s: %s\n", step.c_str(), what);
  std::abort();
}

void Check(bool condition, const std::string& step, const char* what) {
  if (!condition) Fail(step, what);
}

// Whether a scroll position is what the scroll handler leaves: not above the
// displayed length minus the view length, and not below 0 unless that limit, applied
// last, is itself below 0 (content narrower than the view).
bool ScrolledWithin(int position, int displayed, int view) {
  const long long limit = static_cast<long long>(displayed) - view;
  return position <= limit && (position >= 0 || position == limit);
}

// FUZZ_CONTROL_TRACE=1 in the environment prints every step and the state after it,
// to read what led to a finding.
bool Tracing() {
  static const bool tracing = std::getenv("FUZZ_CONTROL_TRACE") != nullptr;
  return tracing;
}

void PrintState(const std::string& step, const EditorState& s) {
  std::fprintf(
      stderr,
      "%-16s tool %d history %d/%d original %s%ldx%ld scale %.4f displayed %ldx%ld image %ld,%ld "
      "view %ldx%ld scroll %ld,%ld bars %d%d surfaces %ldx%ld %ldx%ld %ldx%ld objects %zu selected %d\n",
      step.c_str(), s.toolMode, s.historyIndex, s.historyCount, s.originalPresent ? "" : "(gone) ",
      static_cast<long>(s.original.cx), static_cast<long>(s.original.cy), s.scale,
      static_cast<long>(s.displayed.cx), static_cast<long>(s.displayed.cy),
      static_cast<long>(s.imageRect.left), static_cast<long>(s.imageRect.top), static_cast<long>(s.view.cx),
      static_cast<long>(s.view.cy), static_cast<long>(s.scroll.x), static_cast<long>(s.scroll.y),
      s.hScrollShown, s.vScrollShown, static_cast<long>(s.composition.cx),
      static_cast<long>(s.composition.cy), static_cast<long>(s.drawingLayer.cx),
      static_cast<long>(s.drawingLayer.cy), static_cast<long>(s.imageSurface.cx),
      static_cast<long>(s.imageSurface.cy), s.objects.size(), s.selectedObject);
}

// What the editor's state must satisfy after every step, and after the calls whose
// outcome is fully determined, what they must have done. Only promises the control
// really makes are checked. Two it does not make: the image rectangle lies inside
// the surfaces only right after a layout (ScaleImage centres a larger picture
// around the surfaces' middle, and a history level gives back its image rectangle
// while the image surface keeps its size; every pixel pass clips), and a scroll
// position may sit below 0 (the upper clamp comes last) or outside the range of a
// later layout (ScaleImage and undo leave the positions alone).
class StateChecks {
 public:
  explicit StateChecks(const CImageEditCtrl& control) : control_(control), before_(control.State()) {}

  // A graphics creation may fail: the surfaces may keep an older size from then on.
  void ExpectFailedCreations() { creationsMayFail_ = true; }

  void AfterStep(const std::string& step) { Examine(step, control_.State()); }

  // A scroll-bar message: the objects keep their place on the picture, so each moved
  // against the scroll position by what it changed (unless it stopped at the limits
  // of int).
  void AfterScroll(const std::string& step) {
    const EditorState after = control_.State();
    if (Tracing()) PrintState(step, after);
    const long long dx = static_cast<long long>(after.scroll.x) - before_.scroll.x;
    const long long dy = static_cast<long long>(after.scroll.y) - before_.scroll.y;
    Check(after.objects.size() == before_.objects.size(), step, "scrolling changed the objects");
    for (std::size_t i = 0; i < after.objects.size(); ++i) {
      const long long x = before_.objects[i].x - dx;
      const long long y = before_.objects[i].y - dy;
      Check((x != std::clamp<long long>(x, INT_MIN, INT_MAX) || after.objects[i].x == x) &&
                (y != std::clamp<long long>(y, INT_MIN, INT_MAX) || after.objects[i].y == y),
            step, "an object did not follow the scrolling");
    }
    Examine(step, after, false);
  }

  // A method call that the dispatch accepted, with its arguments as given: the
  // outcome of the calls that promise one exactly, then the step's invariants.
  void AfterCall(const std::string& method, std::span<const Variant> args, const InvokeResult& result) {
    const std::string& step = method;
    const EditorState after = control_.State();
    if (Tracing()) PrintState(result.hr == S_OK ? step : step + " (refused)", after);
    if (result.hr == S_OK) CheckOutcome(step, method, args, result, after);
    Examine(step, after, false);
  }

 private:
  // The invariants of every step; the state becomes the one the next step starts from.
  void Examine(const std::string& step, const EditorState& after, bool print = true) {
    if (print && Tracing()) PrintState(step, after);
    CheckHistory(step, after);
    CheckPlacement(step, after);
    CheckObjects(step, after);
    before_ = after;
  }

  void CheckHistory(const std::string& step, const EditorState& s) const {
    Check(s.historyCount >= 0 && s.historyCount <= kHistoryLevels, step, "history count out of range");
    Check(s.historyIndex >= -1 && s.historyIndex < s.historyCount, step, "history index out of range");
    Check((s.historyIndex == -1) == (s.historyCount == 0), step, "history index -1 with levels present");
  }

  void CheckPlacement(const std::string& step, const EditorState& s) const {
    Check(s.displayed.cx >= 0 && s.displayed.cy >= 0, step, "negative displayed size");
    Check(static_cast<long long>(s.imageRect.right) - s.imageRect.left == s.displayed.cx &&
              static_cast<long long>(s.imageRect.bottom) - s.imageRect.top == s.displayed.cy,
          step, "image rectangle does not span the displayed size");
    Check(s.view.cx >= 0 && s.view.cy >= 0, step, "negative view size");
    // Every re-creation of the drawing layer is matched by one of the composition
    // buffer at the same size (or followed by a layout that makes both the same).
    if (!creationsMayFail_ && !emptyLayout_) {
      Check(s.composition.cx == s.drawingLayer.cx && s.composition.cy == s.drawingLayer.cy, step,
            "composition buffer and drawing layer differ in size");
    }
    // A position that moved was clamped against the displayed size before or after
    // the step (a restore scrolls before it gives back its displayed size) and the
    // view as measured now, or reset to 0. A restore also gives back a view size the
    // scrolling never saw, so a step that moved the history index is left out.
    if (s.historyIndex != before_.historyIndex || s.historyCount != before_.historyCount) return;
    auto moved = [&](int now, int was, int displayedBefore, int displayedAfter, int view) {
      return now == was || now == 0 || ScrolledWithin(now, displayedBefore, view) ||
             ScrolledWithin(now, displayedAfter, view);
    };
    Check(moved(s.scroll.x, before_.scroll.x, before_.displayed.cx, s.displayed.cx, s.view.cx), step,
          "horizontal scroll position outside its clamp");
    Check(moved(s.scroll.y, before_.scroll.y, before_.displayed.cy, s.displayed.cy, s.view.cy), step,
          "vertical scroll position outside its clamp");
  }

  // The z-order names each live object exactly once; at most one object is selected,
  // and it is the selected slot.
  void CheckObjects(const std::string& step, const EditorState& s) const {
    Check(s.objects.size() <= kObjectSlots, step, "more objects than slots");
    Check(s.zOrder.size() == s.objects.size(), step, "z-order length differs from the live objects");
    for (std::size_t i = 0; i < s.zOrder.size(); ++i) {
      const int slot = s.zOrder[i];
      Check(std::count(s.zOrder.begin(), s.zOrder.end(), slot) == 1, step, "z-order names a slot twice");
      Check(std::any_of(s.objects.begin(), s.objects.end(),
                        [slot](const ObjectState& o) { return o.slot == slot; }),
            step, "z-order names a free slot");
    }
    for (const ObjectState& object : s.objects) {
      Check(object.selected == (object.slot == s.selectedObject), step,
            "selected flag disagrees with the selected slot");
    }
    Check(s.selectedObject == -1 || std::count(s.zOrder.begin(), s.zOrder.end(), s.selectedObject) == 1, step,
          "selected slot is not a live object");
  }

  // After a layout the surfaces are the larger of the view and the displayed size,
  // and the picture is centred in them. A layout without area (a picture shrunk to
  // no height in a window whose bars leave no client area) gives the composition
  // buffer and the image surface that extent though no bitmap can have it, and
  // leaves the drawing layer as it was, until the next layout with area.
  void CheckLaidOut(const std::string& step, const EditorState& s) {
    const int width = std::max(s.view.cx, s.displayed.cx);
    const int height = std::max(s.view.cy, s.displayed.cy);
    emptyLayout_ = width == 0 || height == 0;
    auto laidOut = [width, height](const SIZE& surface) {
      return surface.cx == width && surface.cy == height;
    };
    Check(laidOut(s.composition) && laidOut(s.imageSurface) && (emptyLayout_ || laidOut(s.drawingLayer)),
          step, "surface not sized to the layout");
    Check(s.imageRect.left == width / 2 - s.displayed.cx / 2 &&
              s.imageRect.top == height / 2 - s.displayed.cy / 2,
          step, "image not centred in its surfaces");
  }

  void CheckOutcome(const std::string& step, std::string_view method, std::span<const Variant> args,
                    const InvokeResult& result, const EditorState& s) {
    auto intArgument = [&args](std::size_t i, int* value) {
      if (i >= args.size() || args[i].type() != Variant::Type::Int) return false;
      *value = args[i].asInt();
      return true;
    };
    int value = 0;
    if (method == "Undo") {
      Check(
          s.historyCount == before_.historyCount &&
              s.historyIndex == (before_.historyIndex > 0 ? before_.historyIndex - 1 : before_.historyIndex),
          step, "Undo did not step back exactly one level");
    } else if (method == "Redo") {
      const bool canRedo = before_.historyIndex < before_.historyCount - 1;
      Check(s.historyCount == before_.historyCount &&
                s.historyIndex == (canRedo ? before_.historyIndex + 1 : before_.historyIndex),
            step, "Redo did not step forward exactly one level");
    } else if (method == "Clear") {
      Check(s.historyCount == 0 && s.historyIndex == -1, step, "Clear left history levels");
    } else if (method == "SetImage") {
      // A load that worked lays the picture out and records it as the current level.
      if (!s.originalPresent) return;
      Check(s.scalingAllowed, step, "a loaded picture may not be scaled");
      if (creationsMayFail_) return;
      Check(s.historyIndex == s.historyCount - 1 && s.historyCount >= 1, step, "a load recorded no level");
      CheckLaidOut(step, s);
    } else if (method == "SetImageWidth" && intArgument(0, &value)) {
      if (value == 0) {
        Check(!s.hScrollShown && !s.vScrollShown && s.scroll.x == 0 && s.scroll.y == 0 && s.view.cx == 0 &&
                  s.view.cy == 0,
              step, "SetImageWidth(0) left scrolling behind");
      } else if (s.originalPresent && !creationsMayFail_) {
        CheckLaidOut(step, s);
      }
    } else if (method == "RotateImage" && intArgument(0, &value) && (value == 90 || value == -90)) {
      // A quarter turn lays the turned picture out again.
      if (s.originalPresent && !creationsMayFail_) CheckLaidOut(step, s);
    } else if (method == "ScaleImage" && result.value.type() != Variant::Type::Empty &&
               result.value.type() != Variant::Type::Null) {
      Check((result.value.asInt() != 0) == before_.scalingAllowed, step, "ScaleImage answered another flag");
      if (result.value.asInt() == 0 || creationsMayFail_) return;
      Check(s.displayed.cx == static_cast<int>(s.original.cx * s.scale) &&
                s.displayed.cy == static_cast<int>(s.original.cy * s.scale),
            step, "ScaleImage displayed size is not the scaled original");
      Check(s.imageRect.left == s.imageSurface.cx / 2 - s.displayed.cx / 2 &&
                s.imageRect.top == s.imageSurface.cy / 2 - s.displayed.cy / 2,
            step, "ScaleImage did not centre the image in the image surface");
    }
  }

  const CImageEditCtrl& control_;
  EditorState before_;
  bool creationsMayFail_ = false;
  bool emptyLayout_ = false;
};

// The methods that choose a tool, and the calls that may arrive in the middle of a
// drag: everything that replaces the picture, its layout, the history or the tool.
constexpr std::array<std::string_view, 14> kToolSetters{
    "SetPen",         "SetBrush",        "SetEraser",       "SetAirBrush",
    "SetBitmapBrush", "SetShape",        "SelectColor",     "FillWithSelectedColor",
    "EnterText",      "SelectRectangle", "SelectIrregular", "CutImage",
    "MosaicImage",    "SetNothing"};
constexpr std::array<std::string_view, 10> kInterruptingCalls{
    "Clear", "SetImage",    "SetImageWidth",   "ScaleImage", "Undo",
    "Redo",  "RotateImage", "SetSelectionBox", "InsertIcon", "SetFrame"};

// One sequence: the host window, the control in it, and the answers its dialogs get.
class Session : public platform::Host {
 public:
  explicit Session(FuzzedDataProvider& data) : data_(data) {
    platform::SetHost(this);
    const std::array<LANGID, 4> languages{0x0409, 0x0412, 0x0804, 0x0411};
    platform::SetUserDefaultLangID(data.PickValueInArray(languages));
    width_ = Side();
    height_ = Side();
    hostWindow_ = platform::CreateHostWindow(width_, height_);
    control_ = std::make_unique<CImageEditCtrl>();
    if (!hostWindow_ || !control_->CreateControl(hostWindow_, width_, height_)) return;
    checks_.emplace(*control_);
    // Most sequences start from a picture, as a page's script would.
    if (data.ConsumeIntegral<std::uint8_t>() > 40) {
      const Variant picture = AnyPicture();
      CallMethod(*FindMethod("SetImage"), std::span(&picture, 1));
    }
  }
  ~Session() override {
    platform::MouseInput(hostWindow_, WM_LBUTTONUP, 0, 0);
    platform::MouseInput(hostWindow_, WM_RBUTTONUP, 0, 0);
    platform::SetKeyDown(VK_CONTROL, false);
    platform::SetKeyDown(VK_SHIFT, false);
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
    platform::FailNthCreation(platform::GdiKind::DC, 0);
    platform::SetGraphicsMemoryBudget(0);
    control_->DestroyWindow();
    control_.reset();
    if (hostWindow_) DestroyWindow(hostWindow_);
    platform::SetHost(nullptr);
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Without a control there is nothing to drive.
  bool created() const { return checks_.has_value(); }

  void AnyMethod() {
    const auto& methods = DispatchMethods();
    const MethodInfo& method = methods[data_.ConsumeIntegralInRange<std::size_t>(0, methods.size() - 1)];
    std::vector<Variant> args;
    for (const ParamInfo& param : method.params) args.push_back(Argument(data_, param));
    // Now and then one argument too few or too many.
    if (data_.ConsumeIntegralInRange(0, 31) == 0) {
      if (args.empty() || data_.ConsumeBool()) {
        args.push_back(Variant::Int(1));
      } else {
        args.pop_back();
      }
    }
    CallMethod(method, args);
  }
  void ToolSetter() { Call(data_.PickValueInArray(kToolSetters)); }

  // A press, a few moves and (mostly) a release, now and then cut into by a call, a
  // key, a timer tick or the loss of focus or capture.
  void Drag() {
    POINT at{X(), Y()};
    Mouse(WM_LBUTTONDOWN, at, "drag down");
    const int moves = data_.ConsumeIntegralInRange(1, 6);
    const int interruptBefore = data_.ConsumeIntegralInRange(0, 2 * moves);
    for (int i = 0; i < moves; ++i) {
      if (i == interruptBefore) Interrupt();
      if (data_.ConsumeIntegralInRange(0, 7) == 0) {
        at = POINT{X(), Y()};
      } else {
        at.x += data_.ConsumeIntegralInRange(-9, 9);
        at.y += data_.ConsumeIntegralInRange(-9, 9);
      }
      Mouse(WM_MOUSEMOVE, at, "drag move");
    }
    if (data_.ConsumeIntegralInRange(0, 5) != 0) Mouse(WM_LBUTTONUP, at, "drag up");
  }
  void Interrupt() {
    switch (data_.ConsumeIntegralInRange(0, 5)) {
      case 0:
        Call(data_.PickValueInArray(kInterruptingCalls));
        break;
      case 1:
        ToolSetter();
        break;
      case 2:
        LoseFocus();
        break;
      case 3:
        LoseCapture();
        break;
      case 4:
        Wait();
        break;
      default:
        Key();
        break;
    }
  }

  void Mouse(UINT message) { Mouse(message, POINT{X(), Y()}, "mouse"); }
  void DoubleClick() {
    const int x = X(), y = Y();
    platform::MouseInput(hostWindow_, WM_LBUTTONDBLCLK, x, y);
    platform::MouseInput(hostWindow_, WM_LBUTTONUP, x, y);
    checks_->AfterStep("double click");
  }
  void Key() {
    static constexpr std::array<int, 20> kKeys{
        VK_TAB,    VK_ESCAPE, VK_PRIOR, VK_NEXT, VK_END, VK_HOME, VK_LEFT, VK_UP, VK_RIGHT, VK_DOWN,
        VK_DELETE, VK_RETURN, VK_BACK,  'A',     'C',    'V',     'X',     'Y',   'Z',      VK_SHIFT};
    const int key =
        data_.ConsumeBool() ? data_.PickValueInArray(kKeys) : data_.ConsumeIntegralInRange(1, 254);
    platform::SetKeyDown(VK_CONTROL, data_.ConsumeBool());
    platform::SetKeyDown(VK_SHIFT, data_.ConsumeBool());
    platform::KeyInput(hostWindow_, WM_KEYDOWN, key, data_.ConsumeBool());
    platform::KeyInput(hostWindow_, WM_KEYUP, key);
    platform::SetKeyDown(VK_CONTROL, false);
    platform::SetKeyDown(VK_SHIFT, false);
    checks_->AfterStep("key " + std::to_string(key));
  }
  void Char() {
    platform::CharInput(hostWindow_, data_.ConsumeIntegralInRange<unsigned>(0, 0x10FFFF));
    checks_->AfterStep("char");
  }
  void Scroll(UINT message) {
    const UINT code = data_.ConsumeIntegralInRange<UINT>(0, 9);
    const UINT pos = data_.ConsumeIntegral<std::uint16_t>();
    SendMessageA(GetDlgItem(control_->m_hWnd, kEditorWindowId), message,
                 static_cast<WPARAM>(code | (pos << 16)), 0);
    checks_->AfterScroll(message == WM_HSCROLL ? "hscroll" : "vscroll");
  }
  // Timer ticks: the clock moves on and due timers fire.
  void Wait() {
    platform::AdvanceClock(data_.ConsumeIntegralInRange<unsigned>(0, 1000));
    checks_->AfterStep("wait");
  }
  void Paint() {
    platform::FlushPaint(hostWindow_);
    checks_->AfterStep("paint");
  }
  // Another window takes the keyboard, as when the person clicks elsewhere.
  void LoseFocus() {
    SetFocus(hostWindow_);
    checks_->AfterStep("focus loss");
  }
  void LoseCapture() {
    ReleaseCapture();
    checks_->AfterStep("capture loss");
  }
  // The next graphics object of a kind cannot be had, as when the system runs out.
  void FailCreation() {
    platform::FailNthCreation(data_.ConsumeBool() ? platform::GdiKind::Bitmap : platform::GdiKind::DC,
                              data_.ConsumeIntegralInRange(1, 8));
    checks_->ExpectFailedCreations();
    checks_->AfterStep("fail creation");
  }

  // Graphics memory runs short: room is left for a few small bitmaps at most.
  void TightenMemory() {
    platform::SetGraphicsMemoryBudget(platform::GraphicsMemoryInUse() +
                                      data_.ConsumeIntegralInRange<std::size_t>(1, 1 << 16));
    checks_->ExpectFailedCreations();
    checks_->AfterStep("memory short");
  }

  // ---- the host's side: every dialog and menu gets an answer from the input ----
  UINT ShowPopupMenu(HMENU menu, int, int) override {
    const std::vector<platform::MenuItem> items = platform::MenuItems(menu);
    if (items.empty() || data_.ConsumeIntegralInRange(0, 3) == 0) return 0;
    return items[data_.ConsumeIntegralInRange<std::size_t>(0, items.size() - 1)].id;
  }
  bool ChooseColor(COLORREF& color, std::span<COLORREF, 16> customColors) override {
    color = data_.ConsumeIntegral<std::uint32_t>() & 0xFFFFFF;
    if (data_.ConsumeBool()) customColors[data_.ConsumeIntegralInRange(0, 15)] = color;
    return data_.ConsumeBool();
  }
  bool ChooseFont(LOGFONTA& font, COLORREF& color) override {
    font.lfHeight = data_.ConsumeIntegralInRange(-200, 200);
    font.lfWeight = data_.ConsumeBool() ? 700 : 400;
    color = data_.ConsumeIntegral<std::uint32_t>() & 0xFFFFFF;
    return data_.ConsumeBool();
  }

 private:
  // Window sides: a third of them 1 to 4 pixels, where every rectangle is at an edge.
  int Side() {
    return data_.ConsumeIntegralInRange(0, 2) == 0 ? data_.ConsumeIntegralInRange(1, 4)
                                                   : data_.ConsumeIntegralInRange(1, kMaxWindowSide);
  }
  // A window point: inside the window, or now and then anywhere a message can carry.
  int X() {
    return data_.ConsumeIntegralInRange(0, 7) == 0 ? data_.ConsumeIntegral<std::int16_t>()
                                                   : data_.ConsumeIntegralInRange(-2, width_ + 2);
  }
  int Y() {
    return data_.ConsumeIntegralInRange(0, 7) == 0 ? data_.ConsumeIntegral<std::int16_t>()
                                                   : data_.ConsumeIntegralInRange(-2, height_ + 2);
  }
  Variant AnyPicture() {
    return Variant::String(Env().strings[data_.ConsumeIntegralInRange<std::size_t>(0, 3)]);
  }

  // A release ends whatever drag captured the mouse.
  void Mouse(UINT message, POINT at, const char* what) {
    platform::MouseInput(hostWindow_, message, at.x, at.y);
    if (message == WM_LBUTTONUP) Check(GetCapture() == nullptr, what, "a release left the mouse captured");
    checks_->AfterStep(what);
  }
  void Call(std::string_view name) {
    const MethodInfo& method = *FindMethod(name);
    std::vector<Variant> args;
    for (const ParamInfo& param : method.params) args.push_back(Argument(data_, param));
    CallMethod(method, args);
  }
  void CallMethod(const MethodInfo& method, std::span<const Variant> args) {
    const InvokeResult result = data_.ConsumeBool() ? Invoke(*control_, method.name, args)
                                                    : Invoke(*control_, *FindMethod(method.dispid), args);
    checks_->AfterCall(method.name, args, result);
  }

  FuzzedDataProvider& data_;
  int width_ = 0;
  int height_ = 0;
  HWND hostWindow_ = nullptr;
  std::unique_ptr<CImageEditCtrl> control_;
  std::optional<StateChecks> checks_;
};

// What one step of a sequence does, one line each: calls, drags and single inputs.
using Step = void (*)(Session&);
const Step kSteps[] = {
    [](Session& s) { s.AnyMethod(); },
    [](Session& s) { s.AnyMethod(); },
    [](Session& s) { s.AnyMethod(); },
    [](Session& s) { s.ToolSetter(); },
    [](Session& s) { s.ToolSetter(); },
    [](Session& s) { s.Drag(); },
    [](Session& s) { s.Drag(); },
    [](Session& s) { s.Drag(); },
    [](Session& s) { s.Mouse(WM_LBUTTONDOWN); },
    [](Session& s) { s.Mouse(WM_MOUSEMOVE); },
    [](Session& s) { s.Mouse(WM_LBUTTONUP); },
    [](Session& s) { s.Mouse(WM_RBUTTONDOWN); },
    [](Session& s) { s.Mouse(WM_RBUTTONUP); },
    [](Session& s) { s.DoubleClick(); },
    [](Session& s) { s.Key(); },
    [](Session& s) { s.Char(); },
    [](Session& s) { s.Scroll(WM_HSCROLL); },
    [](Session& s) { s.Scroll(WM_VSCROLL); },
    [](Session& s) { s.Wait(); },
    [](Session& s) { s.Paint(); },
    [](Session& s) { s.LoseFocus(); },
    [](Session& s) { s.LoseCapture(); },
    [](Session& s) { s.FailCreation(); },
    [](Session& s) { s.TightenMemory(); },
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  char pattern[] = "/tmp/fuzz_control_XXXXXX";
  if (!::mkdtemp(pattern)) std::abort();
  Env().folder = std::string(pattern) + "/";
  ::setenv("TMPDIR", Env().folder.c_str(), 1);
  Env().strings = HostStrings(Env().folder);
  std::atexit(RemoveFolder);
  // A refused connection answers at once; these only bound a network that misbehaves.
  imageio::DownloadLimits limits;
  limits.connectTimeoutMs = 200;
  limits.totalTimeoutMs = 500;
  imageio::SetDownloadLimits(limits);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Env().ResetFolder();
  FuzzedDataProvider data(bytes, size);
  const int objects = platform::LiveGdiObjects().total();
  const platform::WindowCounts windows = platform::LiveWindowObjects();
  {
    Session session(data);
    for (int step = 0; session.created() && step < kMaxSteps && data.remaining_bytes() > 0; ++step) {
      data.PickValueInArray(kSteps)(session);
    }
  }
  const platform::WindowCounts after = platform::LiveWindowObjects();
  Check(platform::LiveGdiObjects().total() == objects, "the sequence", "graphics objects leaked");
  Check(after.windows == windows.windows && after.menus == windows.menus &&
            after.cursors == windows.cursors && after.timers == windows.timers,
        "the sequence", "windows, menus, cursors or timers outlived the control");
  return 0;
}
