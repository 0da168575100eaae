#include "script_runner.h"

#include <algorithm>

#include "picture_files.h"
#include "platform/kernel.h"

namespace script {
namespace {

constexpr int kDefaultWidth = 640;
constexpr int kDefaultHeight = 480;
// Larger windows would only exhaust memory; no screen is this big.
constexpr int kMaxWindowSide = 16384;

using Args = std::span<const Token>;

void ExpectCount(Args args, std::size_t least, std::size_t most, const char* usage) {
  if (args.size() < least || args.size() > most) throw ParseError(std::string("usage: ") + usage);
}

int IntArg(const Token& token, const char* what) {
  if (!token.isWord()) throw ParseError(std::string(what) + " must be a number, not a string");
  if (!LooksLikeNumber(token.text))
    throw ParseError(std::string(what) + " must be a number, not '" + token.text + "'");
  return ParseInteger(token.text);
}

int IntArgInRange(const Token& token, const char* what, int least, int most) {
  const int value = IntArg(token, what);
  if (value < least || value > most) {
    throw ParseError(std::string(what) + " must be " + std::to_string(least) + " to " + std::to_string(most));
  }
  return value;
}

const std::string& StringArg(const Token& token, const char* what) {
  if (token.isWord()) throw ParseError(std::string(what) + " must be a quoted string");
  return token.text;
}

const std::string& WordArg(const Token& token, const char* what) {
  if (!token.isWord()) throw ParseError(std::string(what) + " must be a word, not a string");
  return token.text;
}

// A file name, quoted or bare.
const std::string& PathArg(const Token& token) { return token.text; }

bool IsCancel(const Token& token) { return token.isWord() && token.text == "cancel"; }

}  // namespace

ScriptRunner::ScriptRunner(std::ostream& out, RunOptions options)
    : out_(out), host_(out, options.trace), events_(out) {
  platform::SetHost(&host_);
}

ScriptRunner::~ScriptRunner() {
  control_.reset();
  module_.reset();
  platform::SetHost(nullptr);
}

const std::vector<ScriptRunner::Statement>& ScriptRunner::Statements() {
  static const std::vector<Statement> statements = {
      {"create", &ScriptRunner::Create, false},
      {"lang", &ScriptRunner::Lang, false},
      {"keyboard", &ScriptRunner::Keyboard, false},
      {"memory", &ScriptRunner::Memory, false},
      {"down", &ScriptRunner::Down, true},
      {"move", &ScriptRunner::Move, true},
      {"up", &ScriptRunner::Up, true},
      {"hover", &ScriptRunner::Hover, true},
      {"rdown", &ScriptRunner::RightDown, true},
      {"rup", &ScriptRunner::RightUp, true},
      {"dblclk", &ScriptRunner::DoubleClick, true},
      {"key", &ScriptRunner::Key, true},
      {"type", &ScriptRunner::Type, true},
      {"wait", &ScriptRunner::Wait, true},
      {"answer", &ScriptRunner::Answer, true},
      {"hscroll", &ScriptRunner::HScroll, true},
      {"vscroll", &ScriptRunner::VScroll, true},
      {"shot", &ScriptRunner::Shot, true},
      {"dump", &ScriptRunner::Dump, true},
      {"state", &ScriptRunner::State, true},
      {"properties", &ScriptRunner::Properties, true},
  };
  return statements;
}

int ScriptRunner::Run(std::istream& script, const std::string& scriptName, std::ostream& err) {
  std::string line;
  int lineNumber = 0;
  const auto fail = [&](int status, const std::string& what) {
    out_.flush();
    err << "imageedit: " << scriptName << ':' << lineNumber << ": " << what << std::endl;
    return status;
  };
  while (std::getline(script, line)) {
    ++lineNumber;
    try {
      const std::vector<Token> tokens = TokenizeLine(line);
      if (!tokens.empty()) Execute(tokens);
      // What the statement changed reaches the screen before the next one, as a
      // message loop paints between inputs.
      if (control_) platform::FlushPaint(HostWindow());
      out_.flush();
    } catch (const ParseError& error) {
      return fail(kExitScriptError, error.what());
    } catch (const std::exception& error) {
      return fail(kExitFailure, error.what());
    }
  }
  if (script.bad()) return fail(kExitFailure, "cannot read the script");
  out_.flush();
  return kExitOk;
}

void ScriptRunner::Execute(const std::vector<Token>& tokens) {
  const Token& head = tokens.front();
  if (!head.isWord()) throw ParseError("a statement starts with a name, not a string");
  const Args args = Args(tokens).subspan(1);
  const auto& statements = Statements();
  const auto statement = std::find_if(statements.begin(), statements.end(),
                                      [&](const Statement& s) { return head.text == s.name; });
  if (statement != statements.end()) {
    if (statement->needsControl) EnsureControl();
    (this->*statement->execute)(args);
  } else if (const FunctionDescription* method = DescribedMethod(head.text)) {
    EnsureControl();
    CallMethod(*method, args);
  } else {
    throw ParseError("unknown statement or method '" + head.text + "'");
  }
}

void ScriptRunner::CreateControl(int width, int height) {
  module_ = std::make_unique<LoadedModule>(ModuleBesideProgram());
  control_ = std::make_unique<HostedControl>(*module_, width, height, events_);
}

void ScriptRunner::EnsureControl() {
  if (!control_) CreateControl(kDefaultWidth, kDefaultHeight);
}

// ---- set-up ----

void ScriptRunner::Create(Args args) {
  ExpectCount(args, 2, 2, "create WIDTH HEIGHT");
  const int width = IntArgInRange(args[0], "create: WIDTH", 1, kMaxWindowSide);
  const int height = IntArgInRange(args[1], "create: HEIGHT", 1, kMaxWindowSide);
  if (control_) throw ParseError("create: the control already exists; create must come first");
  CreateControl(width, height);
}

void ScriptRunner::Lang(Args args) {
  ExpectCount(args, 1, 1, "lang LANGID");
  const int language = IntArgInRange(args[0], "lang: LANGID", 0, 0xFFFF);
  if (control_) throw ParseError("lang must come before the control is created");
  platform::SetUserDefaultLangID(static_cast<LANGID>(language));
}

void ScriptRunner::Keyboard(Args args) {
  ExpectCount(args, 1, 1, "keyboard LAYOUT");
  const int layout = IntArg(args[0], "keyboard: LAYOUT");
  if (control_) throw ParseError("keyboard must come before the control is created");
  platform::SetKeyboardLayout(static_cast<HKL>(static_cast<std::uint32_t>(layout)));
}

void ScriptRunner::Memory(Args args) {
  ExpectCount(args, 0, 1, "memory [MIB]");
  if (!args.empty()) {
    const int mebibytes = IntArgInRange(args[0], "memory: MIB", 0, 1 << 20);
    platform::SetGraphicsMemoryBudget(static_cast<std::size_t>(mebibytes) << 20);
  }
  out_ << "memory " << platform::GraphicsMemoryInUse() << " of " << platform::GraphicsMemoryBudget() << '\n';
}

// ---- mouse ----

void ScriptRunner::Mouse(UINT message, Args args) {
  ExpectCount(args, 2, 2, "down|move|up|hover|rdown|rup|dblclk X Y");
  // Window points travel as two 16-bit halves of a message parameter.
  const int x = IntArgInRange(args[0], "X", -32768, 32767);
  const int y = IntArgInRange(args[1], "Y", -32768, 32767);
  platform::MouseInput(HostWindow(), message, x, y);
}

void ScriptRunner::Down(Args args) { Mouse(WM_LBUTTONDOWN, args); }
// The platform remembers which buttons are held and reports them with the move.
void ScriptRunner::Move(Args args) { Mouse(WM_MOUSEMOVE, args); }
void ScriptRunner::Up(Args args) { Mouse(WM_LBUTTONUP, args); }
void ScriptRunner::RightDown(Args args) { Mouse(WM_RBUTTONDOWN, args); }
void ScriptRunner::RightUp(Args args) { Mouse(WM_RBUTTONUP, args); }

void ScriptRunner::Hover(Args args) {
  if (GetKeyState(VK_LBUTTON) < 0 || GetKeyState(VK_RBUTTON) < 0) {
    throw ParseError("hover: a mouse button is held; use move, or release it first");
  }
  Mouse(WM_MOUSEMOVE, args);
}

void ScriptRunner::DoubleClick(Args args) {
  Mouse(WM_LBUTTONDBLCLK, args);
  Mouse(WM_LBUTTONUP, args);
}

// ---- keyboard ----

void ScriptRunner::Key(Args args) {
  ExpectCount(args, 1, 4, "key VK [ctrl] [shift] [repeat]");
  if (!args[0].isWord()) throw ParseError("key: VK must be a number or a key name, not a string");
  int key = 0;
  if (LooksLikeNumber(args[0].text)) {
    key = IntArgInRange(args[0], "key: VK", 1, 254);
  } else if (const auto named = VirtualKeyByName(args[0].text)) {
    key = *named;
  } else {
    throw ParseError("key: unknown key name '" + args[0].text + "'");
  }
  bool ctrl = false, shift = false, repeat = false;
  for (const Token& option : args.subspan(1)) {
    const std::string& word = WordArg(option, "key: option");
    bool* flag = word == "ctrl" ? &ctrl : word == "shift" ? &shift : word == "repeat" ? &repeat : nullptr;
    if (flag == nullptr) throw ParseError("key: unknown option '" + word + "' (ctrl, shift or repeat)");
    if (*flag) throw ParseError("key: option '" + word + "' given twice");
    *flag = true;
  }
  // The modifiers are held around the key, as a person presses them.
  platform::SetKeyDown(VK_CONTROL, ctrl);
  platform::SetKeyDown(VK_SHIFT, shift);
  platform::KeyInput(HostWindow(), WM_KEYDOWN, key, repeat);
  platform::KeyInput(HostWindow(), WM_KEYUP, key);
  platform::SetKeyDown(VK_CONTROL, false);
  platform::SetKeyDown(VK_SHIFT, false);
}

void ScriptRunner::Type(Args args) {
  ExpectCount(args, 1, 1, "type \"TEXT\"");
  for (char32_t codePoint : DecodeUtf8(StringArg(args[0], "type: TEXT"))) {
    platform::CharInput(HostWindow(), static_cast<unsigned>(codePoint));
  }
}

// ---- time, answers, scrolling ----

void ScriptRunner::Wait(Args args) {
  ExpectCount(args, 1, 1, "wait MS");
  platform::AdvanceClock(static_cast<unsigned>(IntArgInRange(args[0], "wait: MS", 0, 0x7FFFFFFF)));
}

void ScriptRunner::Answer(Args args) {
  const std::string usage =
      "usage: answer menu ID|cancel, answer color RRGGBB [custom N]|cancel, answer font \"FONT\"|cancel, "
      "answer dialog shot FILE";
  if (args.size() < 2) throw ParseError(usage);
  const std::string& kind = WordArg(args[0], "answer: kind");
  if (kind == "dialog") {
    if (args.size() != 3 || WordArg(args[1], "answer dialog: what") != "shot") throw ParseError(usage);
    host_.QueueDialogShot(PathArg(args[2]));
    return;
  }
  const Token& value = args[1];
  // Only a chosen colour takes more: the custom-colour box it is also put into.
  const bool customBox = kind == "color" && !IsCancel(value) && args.size() == 4 &&
                         WordArg(args[2], "answer color: option") == "custom";
  if (args.size() != (customBox ? 4u : 2u)) throw ParseError(usage);
  if (kind == "menu") {
    host_.QueueMenuAnswer(IsCancel(value)
                              ? std::nullopt
                              : std::optional<UINT>(IntArgInRange(value, "answer menu: ID", 1, 0xFFFF)));
  } else if (kind == "color") {
    host_.QueueColorAnswer(
        IsCancel(value) ? std::nullopt : std::optional<COLORREF>(ParseRgbHex(WordArg(value, "answer color"))),
        customBox ? std::optional<int>(IntArgInRange(args[3], "answer color: custom box", 0, 15))
                  : std::nullopt);
  } else if (kind == "font") {
    host_.QueueFontAnswer(IsCancel(value)
                              ? std::nullopt
                              : std::optional<FontChoice>(ParseFontAnswer(StringArg(value, "answer font"))));
  } else {
    throw ParseError("answer: unknown kind '" + kind + "' (menu, color, font or dialog)");
  }
}

void ScriptRunner::Scroll(UINT message, Args args) {
  ExpectCount(args, 1, 2, "hscroll|vscroll CODE [POS]");
  UINT code = 0;
  if (args[0].isWord() && !LooksLikeNumber(args[0].text)) {
    const auto named = ScrollCodeByName(args[0].text);
    if (!named) throw ParseError("unknown scroll code '" + args[0].text + "'");
    code = *named;
  } else {
    code = static_cast<UINT>(IntArgInRange(args[0], "scroll CODE", 0, 0xFFFF));
  }
  // The position travels in the high word of the message, as a scroll bar sends it.
  const int pos = args.size() > 1 ? IntArgInRange(args[1], "scroll POS", 0, 0xFFFF) : 0;
  SendMessageA(control_->editorWindow(), message, static_cast<WPARAM>(code | (static_cast<UINT>(pos) << 16)),
               0);
}

// The host's Properties verb: the control shows its property page.
void ScriptRunner::Properties(Args args) {
  ExpectCount(args, 0, 0, "properties");
  control_->ShowProperties();
}

void ScriptRunner::HScroll(Args args) { Scroll(WM_HSCROLL, args); }
void ScriptRunner::VScroll(Args args) { Scroll(WM_VSCROLL, args); }

// ---- pictures and state ----

void ScriptRunner::WritePicture(HBITMAP bitmap, const std::string& path, const std::string& what) {
  switch (WritePictureFile(bitmap, path)) {
    case PictureResult::Written:
      return;
    case PictureResult::NoPicture:
      throw RunFailure(what + ": there is no picture to write");
    case PictureResult::NotWritten:
      throw RunFailure(what + ": cannot write '" + path + "'");
  }
}

void ScriptRunner::Shot(Args args) {
  ExpectCount(args, 1, 1, "shot FILE");
  WritePicture(platform::HostFrame(HostWindow()), PathArg(args[0]), "shot");
}

void ScriptRunner::Dump(Args args) {
  ExpectCount(args, 2, 2, "dump image|drawing|composition|snapshot|original FILE");
  const std::string& surface = WordArg(args[0], "dump: surface");
  static const std::pair<const char*, ocx::INSPECTED_SURFACE> kSurfaces[] = {
      {"image", ocx::SURFACE_IMAGE},
      {"drawing", ocx::SURFACE_DRAWING},
      {"composition", ocx::SURFACE_COMPOSITION},
      {"snapshot", ocx::SURFACE_SNAPSHOT},
      {"original", ocx::SURFACE_ORIGINAL}};
  const auto named = std::find_if(std::begin(kSurfaces), std::end(kSurfaces),
                                  [&](const auto& entry) { return surface == entry.first; });
  if (named == std::end(kSurfaces)) {
    throw ParseError("dump: unknown surface '" + surface +
                     "' (image, drawing, composition, snapshot, original)");
  }
  WritePicture(control_->Surface(named->second), PathArg(args[1]), "dump " + surface);
}

void ScriptRunner::State(Args args) {
  std::vector<std::string> keys;
  for (const Token& token : args) keys.push_back(WordArg(token, "state: KEY"));
  try {
    out_ << control_->State(keys) << '\n';
  } catch (const std::invalid_argument& unknown) {
    throw ParseError(std::string("state: unknown key '") + unknown.what() + "'");
  }
}

// ---- interface methods ----

// Strings reach the control as UTF-16, numbers as 32-bit integers; the control
// converts them for the method and says why when it cannot.
void ScriptRunner::CallMethod(const FunctionDescription& method, Args args) {
  std::vector<ocx::HostVariant> values;
  for (const Token& arg : args) {
    if (!arg.isWord()) {
      values.push_back(ocx::HostVariant::String(WideFromNarrow(arg.text)));
    } else if (LooksLikeNumber(arg.text)) {
      values.push_back(ocx::HostVariant::Int(ParseInteger(arg.text)));
    } else {
      throw ParseError(method.name + ": argument '" + arg.text + "' is neither a number nor a quoted string");
    }
  }
  const ocx::Call call = control_->CallMethod(method, std::move(values));
  if (ocx::FAILED(call.hr)) {
    throw ParseError(call.description.empty() ? method.name + " failed (" + HresultHex(call.hr) + ")"
                                              : NarrowFromWide(call.description.data(),
                                                               static_cast<UINT>(call.description.size())));
  }
  if (method.result != ocx::VT_VOID)
    out_ << method.name << " -> " << FormatVariant(call.result.get()) << '\n';
}

}  // namespace script
