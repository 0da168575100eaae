// A whole control, as a hostile page or a careless script would drive it: random
// sequences of interface calls (any of the methods, by name or by DISPID, with any
// arguments, wrong types and counts included) and input events (mouse, keys, scroll
// bars, timer ticks, failed graphics creations) over a small picture. After each
// sequence the control is destroyed, and every graphics object it made must be gone.
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

#include <array>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "control/dispatch_table.h"
#include "control/image_edit_ctrl.h"
#include "imageio/url_download.h"
#include "platform/platform.h"

namespace {

namespace fs = std::filesystem;

constexpr int kMaxSteps = 64;
constexpr int kMaxWindowSide = 160;

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
    for (const auto& [name, width, height] :
         {std::tuple{"small.bmp", 24, 16}, std::tuple{"wide.bmp", 240, 60}}) {
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
      "\x01\x01" "abcdefgh" "48656C6C6F",
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
        return param.type == ParamType::String ? Variant::Int(AnyInteger(data)) : AnyString(data);
    }
  }
  if (param.type == ParamType::String) return AnyString(data);
  return Variant::Int(AnyInteger(data));
}

// One sequence: the host window, the control in it, and the answers its dialogs get.
class Session : public platform::Host {
 public:
  explicit Session(FuzzedDataProvider& data) : data_(data) {
    platform::SetHost(this);
    const std::array<LANGID, 4> languages{0x0409, 0x0412, 0x0804, 0x0411};
    platform::SetUserDefaultLangID(data.PickValueInArray(languages));
    width_ = data.ConsumeIntegralInRange(1, kMaxWindowSide);
    height_ = data.ConsumeIntegralInRange(1, kMaxWindowSide);
    hostWindow_ = platform::CreateHostWindow(width_, height_);
    control_ = std::make_unique<CImageEditCtrl>();
    // Most sequences start from a picture, as a page's script would.
    if (hostWindow_ && control_->CreateControl(hostWindow_, width_, height_) &&
        data.ConsumeIntegral<std::uint8_t>() > 40) {
      control_->SetImage(Env().strings[data.ConsumeBool() ? 0 : 1].c_str());
    }
  }
  ~Session() override {
    platform::MouseInput(hostWindow_, WM_LBUTTONUP, 0, 0);
    platform::MouseInput(hostWindow_, WM_RBUTTONUP, 0, 0);
    platform::SetKeyDown(VK_CONTROL, false);
    platform::SetKeyDown(VK_SHIFT, false);
    platform::FailNthCreation(platform::GdiKind::Bitmap, 0);
    platform::FailNthCreation(platform::GdiKind::DC, 0);
    control_->DestroyWindow();
    control_.reset();
    if (hostWindow_) DestroyWindow(hostWindow_);
    platform::SetHost(nullptr);
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  void CallMethod() {
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
    if (data_.ConsumeBool()) {
      Invoke(*control_, method.name, args);
    } else {
      Invoke(*control_, *FindMethod(method.dispid), args);
    }
  }

  void Mouse(UINT message) { platform::MouseInput(hostWindow_, message, X(), Y()); }
  void DoubleClick() {
    const int x = X(), y = Y();
    platform::MouseInput(hostWindow_, WM_LBUTTONDBLCLK, x, y);
    platform::MouseInput(hostWindow_, WM_LBUTTONUP, x, y);
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
  }
  void Char() { platform::CharInput(hostWindow_, data_.ConsumeIntegralInRange<unsigned>(0, 0x10FFFF)); }
  void Scroll(UINT message) {
    const UINT code = data_.ConsumeIntegralInRange<UINT>(0, 9);
    const UINT pos = data_.ConsumeIntegral<std::uint16_t>();
    SendMessageA(GetDlgItem(control_->m_hWnd, kEditorWindowId), message,
                 static_cast<WPARAM>(code | (pos << 16)), 0);
  }
  // Timer ticks: the clock moves on and due timers fire.
  void Wait() { platform::AdvanceClock(data_.ConsumeIntegralInRange<unsigned>(0, 1000)); }
  void Paint() { platform::FlushPaint(hostWindow_); }
  // The next graphics object of a kind cannot be had, as when the system runs out.
  void FailCreation() {
    platform::FailNthCreation(data_.ConsumeBool() ? platform::GdiKind::Bitmap : platform::GdiKind::DC,
                              data_.ConsumeIntegralInRange(1, 8));
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
  // A window point: inside the window, or now and then anywhere a message can carry.
  int X() {
    return data_.ConsumeIntegralInRange(0, 7) == 0 ? data_.ConsumeIntegral<std::int16_t>()
                                                   : data_.ConsumeIntegralInRange(-2, width_ + 2);
  }
  int Y() {
    return data_.ConsumeIntegralInRange(0, 7) == 0 ? data_.ConsumeIntegral<std::int16_t>()
                                                   : data_.ConsumeIntegralInRange(-2, height_ + 2);
  }

  FuzzedDataProvider& data_;
  int width_ = 0;
  int height_ = 0;
  HWND hostWindow_ = nullptr;
  std::unique_ptr<CImageEditCtrl> control_;
};

// The input a person gives the control, one line each.
struct InputEvent {
  const char* name;
  void (*send)(Session&);
};
const InputEvent kEvents[] = {
    {"down", [](Session& s) { s.Mouse(WM_LBUTTONDOWN); }},
    {"move", [](Session& s) { s.Mouse(WM_MOUSEMOVE); }},
    {"up", [](Session& s) { s.Mouse(WM_LBUTTONUP); }},
    {"rdown", [](Session& s) { s.Mouse(WM_RBUTTONDOWN); }},
    {"rup", [](Session& s) { s.Mouse(WM_RBUTTONUP); }},
    {"dblclk", [](Session& s) { s.DoubleClick(); }},
    {"key", [](Session& s) { s.Key(); }},
    {"char", [](Session& s) { s.Char(); }},
    {"hscroll", [](Session& s) { s.Scroll(WM_HSCROLL); }},
    {"vscroll", [](Session& s) { s.Scroll(WM_VSCROLL); }},
    {"wait", [](Session& s) { s.Wait(); }},
    {"paint", [](Session& s) { s.Paint(); }},
    {"fail creation", [](Session& s) { s.FailCreation(); }},
};

void Check(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "fuzz_control: %s\n", what);
  std::abort();
}

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
    for (int step = 0; step < kMaxSteps && data.remaining_bytes() > 0; ++step) {
      if (data.ConsumeBool()) {
        session.CallMethod();
      } else {
        data.PickValueInArray(kEvents).send(session);
      }
    }
  }
  const platform::WindowCounts after = platform::LiveWindowObjects();
  Check(platform::LiveGdiObjects().total() == objects, "graphics objects leaked");
  Check(after.windows == windows.windows && after.menus == windows.menus &&
            after.cursors == windows.cursors && after.timers == windows.timers,
        "windows, menus, cursors or timers outlived the control");
  return 0;
}
