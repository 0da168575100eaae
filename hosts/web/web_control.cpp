// The engine as the custom element sees it: one control in its own host window,
// driven through the dispatch table by method name, fed the page's pointer, key and
// clock input, and handed the pictures the page fetched. Bound to JavaScript with
// Embind as the class `WebControl`; image-edit-control.js is its only user.
#include <emscripten/bind.h>
#include <emscripten/val.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "control/dispatch_table.h"
#include "control/image_edit_ctrl.h"
#include "imageio/bitmap_file_writer.h"
#include "imageio/prepared_pictures.h"
#include "text_box_mirror.h"
#include "web_host.h"

namespace web {
namespace {

using emscripten::val;

// A connected sink: a JavaScript object whose methods are named after the events.
class ScriptSink : public IEventSink {
 public:
  explicit ScriptSink(val target) : target_(std::move(target)) {}
  void Invoke(int dispid, const std::vector<Variant>& args) override;

 private:
  val target_;
};

val ToScript(const Variant& value) {
  switch (value.type()) {
    case Variant::Type::String:
      return val(value.asString());
    case Variant::Type::Bool:
      return val(value.asInt() != 0);
    case Variant::Type::Int:
      return val(value.asInt());
    case Variant::Type::Null:
      return val::null();
    case Variant::Type::Empty:
      break;
  }
  return val::undefined();
}

void ScriptSink::Invoke(int dispid, const std::vector<Variant>& args) {
  const char* name = EventName(dispid);
  if (name == nullptr || target_[name].typeOf().as<std::string>() != "function") return;
  val scriptArgs = val::array();
  for (const Variant& arg : args) scriptArgs.call<void>("push", ToScript(arg));
  target_[name].call<void>("apply", target_, scriptArgs);
}

// A page's argument as an automation host passes it: strings, booleans, and numbers,
// which reach integer parameters rounded to the nearest integer (halves to even) as
// a script's numbers are coerced; null stays null. False for a number beyond 32 bits.
bool FromScript(const val& value, Variant* out) {
  const std::string type = value.typeOf().as<std::string>();
  if (type == "string") {
    *out = Variant::String(value.as<std::string>());
  } else if (type == "boolean") {
    *out = Variant::Bool(value.as<bool>());
  } else if (type == "number") {
    const double number = std::nearbyint(value.as<double>());
    if (!(number >= -2147483648.0 && number <= 2147483647.0)) return false;
    *out = Variant::Int(static_cast<std::int32_t>(number));
  } else if (value.isNull()) {
    *out = Variant::Null();
  } else {
    *out = Variant();
  }
  return true;
}

// The page's arguments of a call as variants; what is wrong with them, if anything.
std::optional<std::string> ArgumentsOf(const std::string& name, const val& args,
                                       std::vector<Variant>* values) {
  const unsigned count = args["length"].as<unsigned>();
  values->resize(count);
  for (unsigned i = 0; i < count; ++i) {
    if (!FromScript(args[i], &(*values)[i]))
      return name + ": argument " + std::to_string(i + 1) + " is beyond 32 bits";
  }
  return std::nullopt;
}

val Outcome(const char* key, val value) {
  val outcome = val::object();
  outcome.set(key, std::move(value));
  return outcome;
}

}  // namespace

class WebControl {
 public:
  WebControl(int width, int height, int language, val page)
      : host_(page), textBox_(page), platformSettings_(&host_, language) {
    hostWindow_ = platform::CreateHostWindow(width, height);
    // A control that cannot be created stays inert, as before its window exists.
    if (hostWindow_ != nullptr) control_.CreateControl(hostWindow_, width, height);
    Flush();
  }

  ~WebControl() {
    for (const auto& [cookie, sink] : sinks_) control_.Unadvise(cookie);
    control_.DestroyWindow();
    if (hostWindow_ != nullptr) DestroyWindow(hostWindow_);
    platform::SetHost(nullptr);
  }

  // One interface method by name: {value} with its result (undefined for none), or
  // {error} when the name or the arguments do not fit, and nothing was called.
  val invoke(const std::string& name, const val& args) {
    std::vector<Variant> values;
    if (std::optional<std::string> error = ArgumentsOf(name, args, &values))
      return Outcome("error", val(*error));
    const InvokeResult result = Invoke(control_, name, values);
    host_.ForgetAnswers();
    Flush();
    if (FAILED(result.hr)) return Outcome("error", val(result.error));
    return Outcome("value", ToScript(result.value));
  }

  // Why `invoke` would refuse the call, or null when it would make it; nothing is
  // called. The page checks a call it runs later.
  val check(const std::string& name, const val& args) const {
    std::vector<Variant> values;
    if (std::optional<std::string> error = ArgumentsOf(name, args, &values)) return val(*error);
    const InvokeResult result = CheckCall(name, values);
    return FAILED(result.hr) ? val(result.error) : val::null();
  }

  // A mouse message at a point of the control, with the modifier keys as they are.
  // Without `present` what it paints waits for the next input that presents: the
  // page sends the moves one pointer event coalesces and shows only the last frame.
  void pointer(unsigned message, int x, int y, bool ctrl, bool shift, bool present) {
    platform::SetKeyDown(VK_CONTROL, ctrl);
    platform::SetKeyDown(VK_SHIFT, shift);
    platform::MouseInput(hostWindow_, message, x, y);
    Flush(present);
  }

  // A key down or up (with the character it types, 0 for none). True when the
  // control's key routing took it, so the page must not act on it.
  bool key(unsigned message, int virtualKey, bool ctrl, bool shift, bool repeat, unsigned character) {
    platform::SetKeyDown(VK_CONTROL, ctrl);
    platform::SetKeyDown(VK_SHIFT, shift);
    const bool taken = platform::KeyInput(hostWindow_, message, virtualKey, repeat);
    if (message == WM_KEYDOWN && character != 0) platform::CharInput(hostWindow_, character);
    Flush();
    return taken;
  }

  // The element's box changed. The page is the control's container and resizes it as
  // a container does, moving the control's window within a host window of the new
  // size; the control does no layout of its own for it, so its editor keeps the size
  // it was made with. False, changing nothing, for a size the host window refuses.
  bool resize(int width, int height) {
    if (hostWindow_ == nullptr || !platform::ResizeHostWindow(hostWindow_, width, height)) return false;
    if (IsWindow(control_.m_hWnd)) MoveWindow(control_.m_hWnd, 0, 0, width, height, TRUE);
    Flush();
    return true;
  }

  // Real time passing: due timers fire.
  void tick(unsigned milliseconds) {
    platform::AdvanceClock(milliseconds);
    Flush();
  }
  bool hasTimers() const { return platform::LiveWindowObjects().timers > 0; }

  // ---- events ----
  unsigned connectSink(val target) {
    auto sink = std::make_unique<ScriptSink>(std::move(target));
    const DWORD cookie = control_.Advise(sink.get());
    if (cookie != 0) sinks_[cookie] = std::move(sink);
    return cookie;
  }
  bool disconnectSink(unsigned cookie) {
    const bool connected = control_.Unadvise(cookie) == TRUE;
    sinks_.erase(cookie);
    return connected;
  }

  // ---- what the page prepares and reads ----
  std::uintptr_t prepareBytes(const std::string& source, std::size_t count) {
    return reinterpret_cast<std::uintptr_t>(imageio::PreparePictureBytes(source, count));
  }
  std::size_t repairBytes(const std::string& source) { return imageio::RepairPreparedBytes(source); }
  std::uintptr_t preparePixels(const std::string& source, int width, int height) {
    return reinterpret_cast<std::uintptr_t>(imageio::PreparePicturePixels(source, width, height));
  }
  void prepareFailure(const std::string& source, unsigned error) {
    imageio::PreparePictureFailure(source, error);
  }
  void forgetPictures() { imageio::ForgetPreparedPictures(); }
  // The answer to the colour dialog that the next call opens: a COLORREF (0x00BBGGRR),
  // or -1 when the person cancelled, and the dialog's sixteen custom colours
  // (COLORREFs) as the person left them.
  void queueColorAnswer(int color, const val& customColors) {
    WebHost::ColorAnswer answer;
    if (color >= 0) answer.color = static_cast<COLORREF>(color);
    const unsigned count = std::min(customColors["length"].as<unsigned>(), 16u);
    for (unsigned i = 0; i < count; ++i) answer.customColors[i] = customColors[i].as<COLORREF>();
    host_.QueueColorAnswer(answer);
  }
  // The answer to the font dialog that the next call opens, as the person chose it in
  // the page's dialog: {face, points, bold, italic, underline, strikeOut, color}.
  void queueFontAnswer(const val& font) {
    WebHost::FontAnswer answer;
    answer.face = font["face"].as<std::string>();
    answer.points = font["points"].as<int>();
    answer.bold = font["bold"].as<bool>();
    answer.italic = font["italic"].as<bool>();
    answer.underline = font["underline"].as<bool>();
    answer.strikeOut = font["strikeOut"].as<bool>();
    answer.color = font["color"].as<COLORREF>();
    host_.QueueFontAnswer(answer);
  }

  // The person closed the page's shortcut menu: `command` is the item they picked, 0
  // when they dismissed it. A command the menu offered enabled reaches the editor
  // window, the menu's owner, as the WM_COMMAND the menu would have sent.
  void menuChosen(unsigned command) {
    const UINT chosen = host_.TakeMenuChoice(command);
    if (chosen != 0) SendMessageA(EditorWindow(), WM_COMMAND, chosen & 0xFFFF, 0);
    Flush();
  }

  // What the person typed into the page's text field over the open text box: it
  // replaces the box's text. False when no box is open.
  bool setTextBoxText(const std::string& text) {
    const bool open = textBox_.SetText(text);
    Flush();
    return open;
  }

  // Where a save of this name goes (a bare name goes into the temp folder).
  std::string savePath(const std::string& name) const { return imageio::ResolveSavePath(name); }

  // A cursor's picture as {width, height, hotX, hotY, rgba}, or null when it has none.
  val cursorArtwork(int resourceId) const {
    platform::CursorArtwork artwork;
    if (!platform::GetCursorArtwork(resourceId, &artwork)) return val::null();
    return ArtworkToScript(artwork);
  }

 private:
  HWND EditorWindow() const { return GetDlgItem(control_.m_hWnd, kEditorWindowId); }

  // Paints what is pending, as a message loop paints between two inputs, and hands a
  // changed frame to the page.
  void Flush(bool present = true) {
    if (hostWindow_ == nullptr) return;
    platform::FlushPaint(hostWindow_);
    if (present) host_.PresentPendingFrame();
    textBox_.Update(EditorWindow());
  }

  // The platform as the control finds it while it is made: the control takes the
  // user's language (its texts, its default font) when it is constructed, so these
  // are set before it, not in the constructor's body.
  struct PlatformSettings {
    PlatformSettings(WebHost* host, int language) {
      platform::SetHost(host);
      platform::SetUserDefaultLangID(static_cast<LANGID>(language));
      // Typed text is converted in the code page of the keyboard layout when it is
      // drawn: a page's keyboard is taken to be of the element's language.
      platform::SetKeyboardLayout(static_cast<HKL>(language));
    }
  };

  WebHost host_;
  TextBoxMirror textBox_;
  PlatformSettings platformSettings_;
  HWND hostWindow_ = nullptr;
  CImageEditCtrl control_;
  std::map<DWORD, std::unique_ptr<ScriptSink>> sinks_;
};

// The engine's graphics-memory budget in MiB; 0 restores the default, what the
// engine's memory may grow to. Past the 4 GiB a 32-bit memory can address it stays
// at the most.
void SetGraphicsMemoryBudget(double mebibytes) {
  const double bytes = mebibytes * 1048576.0;
  constexpr double kMost = static_cast<double>(SIZE_MAX);
  platform::SetGraphicsMemoryBudget(bytes > 0 ? static_cast<std::size_t>(bytes < kMost ? bytes : kMost) : 0);
}

}  // namespace web

EMSCRIPTEN_BINDINGS(image_edit_engine) {
  using web::WebControl;
  emscripten::function("setGraphicsMemoryBudget", &web::SetGraphicsMemoryBudget);
  emscripten::class_<WebControl>("WebControl")
      .constructor<int, int, int, emscripten::val>()
      .function("invoke", &WebControl::invoke)
      .function("check", &WebControl::check)
      .function("pointer", &WebControl::pointer)
      .function("key", &WebControl::key)
      .function("resize", &WebControl::resize)
      .function("tick", &WebControl::tick)
      .function("hasTimers", &WebControl::hasTimers)
      .function("connectSink", &WebControl::connectSink)
      .function("disconnectSink", &WebControl::disconnectSink)
      .function("prepareBytes", &WebControl::prepareBytes)
      .function("repairBytes", &WebControl::repairBytes)
      .function("preparePixels", &WebControl::preparePixels)
      .function("prepareFailure", &WebControl::prepareFailure)
      .function("forgetPictures", &WebControl::forgetPictures)
      .function("queueColorAnswer", &WebControl::queueColorAnswer)
      .function("queueFontAnswer", &WebControl::queueFontAnswer)
      .function("menuChosen", &WebControl::menuChosen)
      .function("setTextBoxText", &WebControl::setTextBoxText)
      .function("savePath", &WebControl::savePath)
      .function("cursorArtwork", &WebControl::cursorArtwork);
}
