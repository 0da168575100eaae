// The control shell: the gate before the editor window exists, forwarding and the
// flag conversions, events, safety answers, and the control's own window handling.
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "control/dispatch_table.h"
#include "control/image_edit_ctrl.h"
#include "control/state_json.h"
#include "test_support.h"

namespace {

class ControlTest : public ::testing::Test {
 protected:
  void TearDown() override {
    control_.reset();
    if (hostWindow_ != nullptr) DestroyWindow(hostWindow_);
  }
  // Activates the control the way a host does: its window, then the editor window
  // (the scenarios show the rest of an activation).
  void Activate() {
    hostWindow_ = platform::CreateHostWindow(160, 120);
    ASSERT_TRUE(control_->CreateControl(hostWindow_, 160, 120));
  }
  InvokeResult Call(std::string_view name, std::vector<Variant> args = {}) {
    return Invoke(*control_, name, args);
  }
  HWND EditorWindow() const { return GetDlgItem(control_->m_hWnd, kEditorWindowId); }

  InstalledRecordingHost host_;
  HWND hostWindow_ = nullptr;
  std::unique_ptr<CImageEditCtrl> control_ = std::make_unique<CImageEditCtrl>();
};

// Every method is called with arguments good enough for its parameters (a picture the
// loader can read, so that inert image methods are told apart from failed loads).
TEST_F(ControlTest, EveryMethodButAboutBoxIsInertBeforeTheEditorWindowExists) {
  const EditorState before = control_->State();
  for (const MethodInfo& method : DispatchMethods()) {
    if (method.dispid == DISPID_ABOUTBOX) continue;
    SCOPED_TRACE(method.name);
    std::vector<Variant> args;
    for (const ParamInfo& param : method.params) {
      args.push_back(param.type == ParamType::String ? Variant::String(IE_TEST_DATA "/imageio/rgba_2x2.png")
                                                     : Variant::Int(1));
    }
    const InvokeResult result = Invoke(*control_, method, args);
    ASSERT_EQ(result.hr, S_OK) << result.error;
    const Variant empty = method.result == ResultType::String ? Variant::Null()
                          : method.result == ResultType::Bool ? Variant::Bool(false)
                                                              : Variant();
    EXPECT_EQ(result.value, empty);
  }
  // Every member of the state a host can read, as the script host reports it.
  EXPECT_EQ(EditorStateJson(control_->State()), EditorStateJson(before));
  EXPECT_TRUE(host_.dialogs.empty());
  EXPECT_TRUE(host_.messages.empty());
}

// Once the control is active, the scenario tests/cli/method_results.ies shows it.
TEST_F(ControlTest, AboutBoxShowsDialogOneEvenBeforeTheEditorWindowExists) {
  EXPECT_EQ(Call("AboutBox").hr, S_OK);
  ASSERT_EQ(host_.dialogs.size(), 1u);
  EXPECT_EQ(host_.dialogs[0].resourceId, 1);
  EXPECT_EQ(host_.dialogs[0].caption, "About Image Edit Control");
}

TEST_F(ControlTest, MouseActivationMakesTheControlUIActive) {
  hostWindow_ = platform::CreateHostWindow(100, 100);
  // Created without the host's activation: in place, not yet UI-active.
  ASSERT_TRUE(
      control_->CreateInParent(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{0, 0, 100, 100}, hostWindow_, 0));
  EXPECT_FALSE(control_->IsUIActive());
  SendMessageA(control_->m_hWnd, WM_MOUSEACTIVATE, reinterpret_cast<WPARAM>(hostWindow_),
               MAKELPARAM(1, WM_LBUTTONDOWN));
  EXPECT_TRUE(control_->IsUIActive());
  ASSERT_NE(EditorWindow(), nullptr);
  EXPECT_EQ(GetFocus(), EditorWindow());
}

// A host's truth value reaches the flag methods as 1 or 0, so automation's true (-1)
// and any non-zero integer turn the setting on.
TEST_F(ControlTest, FlagArgumentsFollowTheHostsTruthValue) {
  Activate();
  using Truth = std::pair<Variant, bool>;
  for (const auto& [argument, on] :
       {Truth{Variant::Bool(true), true}, Truth{Variant::Int(0), false}, Truth{Variant::Int(-1), true},
        Truth{Variant::Bool(false), false}, Truth{Variant::Int(2), true}}) {
    for (const char* method : {"EnableVerbose", "EnableShortcutMenu", "GrayImage", "InvertImage"}) {
      ASSERT_EQ(Call(method, {argument}).hr, S_OK);
    }
    const EditorState state = control_->State();
    EXPECT_EQ(state.verbose, on);
    EXPECT_EQ(state.shortcutMenu, on);
    EXPECT_EQ(state.settings.gray, on);
    EXPECT_EQ(state.settings.invert, on);
  }
  // Called on the control itself only 1 sets a flag; any other value clears the ones
  // the last host value left on.
  control_->EnableVerbose(2);
  control_->EnableShortcutMenu(-1);
  control_->GrayImage(2);
  control_->InvertImage(-1);
  const EditorState state = control_->State();
  EXPECT_FALSE(state.verbose);
  EXPECT_FALSE(state.shortcutMenu);
  EXPECT_FALSE(state.settings.gray);
  EXPECT_FALSE(state.settings.invert);
}

// A repaint composes only the part of the composition buffer that the window shows;
// what a host writes out of it is the whole picture as composed now.
TEST_F(ControlTest, CompositionBitmapIsComposedWholeForTheHost) {
  Activate();
  control_->SetImage(IE_TEST_DATA "/tools/wide_300x200.png");
  control_->BrightenImage(150);
  platform::FlushPaint(hostWindow_);
  const EditorState state = control_->State();
  ASSERT_GT(state.displayed.cx, state.view.cx);
  const std::vector<COLORREF> image = BitmapColors(control_->SurfaceBitmap(SurfaceName::Image));
  ASSERT_FALSE(image.empty());
  EXPECT_EQ(BitmapColors(control_->SurfaceBitmap(SurfaceName::Composition)), image);
}

// A container resizing the control moves its window; the control leaves its editor at
// the size it was made with, so the host's new frame shows the editor as it was, and
// the control's white background beyond it.
TEST_F(ControlTest, AResizedHostAndControlLeaveTheEditorAsItWasMade) {
  Activate();
  control_->SetImage(IE_TEST_DATA "/tools/wide_300x200.png");
  platform::FlushPaint(hostWindow_);
  const auto frame = [this] {
    BITMAP description{};
    GetObjectA(platform::HostFrame(hostWindow_), sizeof description, &description);
    return std::pair{SIZE{description.bmWidth, description.bmHeight},
                     BitmapColors(platform::HostFrame(hostWindow_))};
  };
  const auto [size, before] = frame();
  ASSERT_EQ(size.cx, 160);

  EXPECT_FALSE(platform::ResizeHostWindow(hostWindow_, 0, 180));
  EXPECT_FALSE(platform::ResizeHostWindow(EditorWindow(), 240, 180)) << "only a host root";
  ASSERT_TRUE(platform::ResizeHostWindow(hostWindow_, 240, 180));
  MoveWindow(control_->m_hWnd, 0, 0, 240, 180, TRUE);
  platform::FlushPaint(hostWindow_);
  const auto [wider, after] = frame();
  ASSERT_EQ(wider.cx, 240);
  ASSERT_EQ(wider.cy, 180);
  RECT editor{};
  GetClientRect(EditorWindow(), &editor);
  EXPECT_EQ(editor.right, 160 - 17) << "the editor keeps its size, its bar included";
  for (int y = 0; y < 120; ++y) {
    for (int x = 0; x < 160; ++x) ASSERT_EQ(after[y * 240 + x], before[y * 160 + x]) << x << "," << y;
  }
  EXPECT_EQ(after[150 * 240 + 200], RGB(255, 255, 255));

  ASSERT_TRUE(platform::ResizeHostWindow(hostWindow_, 100, 80));
  MoveWindow(control_->m_hWnd, 0, 0, 100, 80, TRUE);
  platform::FlushPaint(hostWindow_);
  const auto [smaller, clipped] = frame();
  ASSERT_EQ(smaller.cx, 100);
  EXPECT_EQ(clipped[79 * 100 + 99], before[79 * 160 + 99]);
}

// Logs "sink:colour" for each ColorSelected it receives.
class RecordingSink : public IEventSink {
 public:
  RecordingSink(int id, std::vector<std::string>& log) : id_(id), log_(log) {}
  void Invoke(int dispid, const std::vector<Variant>& args) override {
    EXPECT_EQ(dispid, DISPID_COLORSELECTED);
    log_.push_back(std::to_string(id_) + ":" + (args.size() == 1 ? args[0].asString() : "bad arguments"));
    if (onCall) onCall();
  }
  std::function<void()> onCall;

 private:
  int id_;
  std::vector<std::string>& log_;
};

TEST_F(ControlTest, ColorSelectedReachesEverySinkOnceInConnectionOrder) {
  std::vector<std::string> log;
  RecordingSink a(1, log), b(2, log), c(3, log);
  const DWORD cookieA = control_->Advise(&a);
  const DWORD cookieB = control_->Advise(&b);
  const DWORD cookieC = control_->Advise(&c);
  EXPECT_NE(cookieA, 0u);
  EXPECT_EQ(control_->Advise(nullptr), 0u);
  control_->FireColorSelected("00FF00");
  EXPECT_EQ(log, (std::vector<std::string>{"1:00FF00", "2:00FF00", "3:00FF00"}));

  log.clear();
  EXPECT_TRUE(control_->Unadvise(cookieB));
  EXPECT_FALSE(control_->Unadvise(cookieB));
  EXPECT_FALSE(control_->Unadvise(12345));
  // A sink may disconnect itself and others while the event is fired: the third is
  // not called.
  a.onCall = [&] {
    control_->Unadvise(cookieA);
    control_->Unadvise(cookieC);
  };
  control_->Advise(&b);
  control_->FireColorSelected("123ABC");
  control_->FireColorSelected("FFFFFF");
  EXPECT_EQ(log, (std::vector<std::string>{"1:123ABC", "2:123ABC", "2:FFFFFF"}));
}

// A child window of the control standing for the host's side: with the focus, it
// receives whatever keys the control lets through.
class KeyTarget : public CWnd {
 public:
  std::vector<UINT> keys;
  void OnKeyDown(UINT virtualKey, UINT, UINT) override { keys.push_back(virtualKey); }
};

TEST_F(ControlTest, HostNeverSeesTheEditorKeysOnceTheControlIsActive) {
  // Before activation the keys are the host's.
  MSG msg{nullptr, WM_KEYDOWN, VK_DELETE, 0, 0, {0, 0}};
  EXPECT_FALSE(control_->PreTranslateMessage(&msg));
  Activate();
  KeyTarget target;
  ASSERT_TRUE(target.Create(nullptr, "", WS_CHILD | WS_VISIBLE, RECT{0, 0, 10, 10}, control_.get(), 7));
  target.SetFocus();
  // KeyInput tells the host which keys it must not act on itself.
  for (int key :
       {VK_TAB, VK_ESCAPE, VK_PRIOR, VK_NEXT, VK_END, VK_HOME, VK_LEFT, VK_UP, VK_RIGHT, VK_DOWN, VK_DELETE})
    EXPECT_TRUE(platform::KeyInput(hostWindow_, WM_KEYDOWN, key)) << key;
  EXPECT_FALSE(platform::KeyInput(hostWindow_, WM_KEYDOWN, 'A'));
  EXPECT_FALSE(platform::KeyInput(hostWindow_, WM_KEYDOWN, VK_RETURN));
  EXPECT_EQ(target.keys, (std::vector<UINT>{'A', VK_RETURN}));
  target.DestroyWindow();
  // They stay the control's once the editor window is gone.
  ASSERT_TRUE(DestroyWindow(EditorWindow()));
  msg.hwnd = control_->m_hWnd;
  EXPECT_TRUE(control_->PreTranslateMessage(&msg));
}

// With the text box open and focused, the editor keys still go to the editor on the
// way up from the edit control: they neither move its caret nor delete, while
// Backspace and Return, which the control lets through, edit the text.
TEST_F(ControlTest, TheEditorKeysNeverReachAnOpenTextBox) {
  Activate();
  control_->SetImage(IE_TEST_DATA "/tools/wide_300x200.png");
  control_->EnterText();
  platform::MouseInput(hostWindow_, WM_LBUTTONDOWN, 20, 20);
  platform::MouseInput(hostWindow_, WM_MOUSEMOVE, 120, 80);
  platform::MouseInput(hostWindow_, WM_LBUTTONUP, 120, 80);
  const HWND edit = GetDlgItem(GetDlgItem(EditorWindow(), 1), 1);
  ASSERT_NE(edit, nullptr);
  ASSERT_EQ(GetFocus(), edit);
  const auto text = [&] {
    WCHAR buffer[16] = {};
    return std::u16string(buffer, static_cast<std::size_t>(GetWindowTextW(edit, buffer, 16)));
  };
  for (char c : std::string("abc")) platform::CharInput(hostWindow_, static_cast<unsigned>(c));
  for (int key : {VK_LEFT, VK_HOME, VK_UP, VK_DELETE, VK_END, VK_TAB, VK_ESCAPE}) {
    EXPECT_TRUE(platform::KeyInput(hostWindow_, WM_KEYDOWN, key)) << key;
    platform::KeyInput(hostWindow_, WM_KEYUP, key);
  }
  platform::CharInput(hostWindow_, 'X');
  EXPECT_EQ(text(), u"abcX");
  EXPECT_FALSE(platform::KeyInput(hostWindow_, WM_KEYDOWN, VK_BACK));
  EXPECT_FALSE(platform::KeyInput(hostWindow_, WM_KEYDOWN, VK_RETURN));
  EXPECT_EQ(text(), u"abc\r\n");
  EXPECT_EQ(GetFocus(), edit);
}

}  // namespace
