// imageedit: the script host. Creates a control, runs a script of statements against
// it, and writes what a person would see to standard output.
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>

#include "cursor_sheet.h"
#include "module_commands.h"
#include "script_runner.h"

namespace {

constexpr const char* kUsage =
    "usage: imageedit [--trace] run FILE|-\n"
    "       imageedit cursors FILE\n"
    "       imageedit register|unregister|info\n"
    "       imageedit --help\n";

constexpr const char* kHelp =
    "Runs an ImageEdit script: one statement a line, '#' starts a comment.\n"
    "\n"
    "  create W H                 a control of W x H (default: 640 x 480 on first use)\n"
    "  lang 0xNN / keyboard 0xNNNN  user language and keyboard layout (before create)\n"
    "  memory [MIB]               set the graphics-memory budget (0: the default) and\n"
    "                             print `memory IN_USE of BUDGET` in bytes\n"
    "  METHOD ARGS...             an interface method by name: SetImage \"a.jpg\", SetPen 3\n"
    "  down|move|up|hover X Y     left button and mouse moves at a window point\n"
    "  rdown|rup|dblclk X Y       right button; double click (second press and release)\n"
    "  key VK [ctrl] [shift] [repeat]   a key down and up (VK a number or a name: Escape)\n"
    "  type \"TEXT\"                characters for the window with the focus\n"
    "  wait MS                    advance the clock; due timers fire\n"
    "  answer menu ID|cancel      answer the next popup menu\n"
    "  answer color RRGGBB|cancel answer the next colour dialog\n"
    "  answer font \"FONT\"|cancel  answer the next font dialog\n"
    "  hscroll|vscroll CODE [POS] a scroll-bar message (CODE a number or SB_ name)\n"
    "  shot FILE                  the window as a 24-bit BMP (PNG for .png)\n"
    "  dump image|drawing|composition|snapshot|original FILE   one surface as a BMP\n"
    "  state                      the editor's state as one line of JSON\n"
    "\n"
    "Options: --trace prints `cursor N` whenever the cursor changes.\n"
    "`imageedit cursors FILE` draws every cursor into one picture (PNG for .png, else\n"
    "BMP): ids, 100 % and 200 % on light and dark, magenta ticks at the hot spot.\n"
    "`imageedit register` and `unregister` load the control module beside this program\n"
    "and register it in, or remove it from, the per-user registry file\n"
    "($OSTREL_REGISTRY, else $XDG_CONFIG_HOME/ostrel/registry, else\n"
    "~/.config/ostrel/registry); `imageedit info` shows what is registered there and\n"
    "the interfaces of the registered type library with their DISPIDs.\n"
    "Exit status: 0 the script ran to its end; 1 it could not finish (unreadable\n"
    "script, unwritable file, missing surface); 2 a statement is malformed or names\n"
    "nothing, or the command line is wrong.\n";

int Usage() {
  std::cerr << kUsage;
  return script::kExitScriptError;
}

int WriteCursorSheet(const std::string& path) {
  if (script::WriteCursorSheet(path) != script::PictureResult::Written) {
    std::cerr << "imageedit: cannot write '" << path << "'\n";
    return script::kExitFailure;
  }
  return script::kExitOk;
}

}  // namespace

int main(int argc, char** argv) {
  script::RunOptions options;
  std::string scriptPath;
  bool run = false;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      std::cout << kUsage << '\n' << kHelp;
      return script::kExitOk;
    }
    if (arg == "cursors" && argc == 3 && i == 1) return WriteCursorSheet(argv[2]);
    if ((arg == "register" || arg == "unregister") && argc == 2) {
      return script::RegisterModule(arg == "unregister", std::cout, std::cerr);
    }
    if (arg == "info" && argc == 2) return script::PrintRegistration(std::cout, std::cerr);
    if (arg == "--trace") {
      options.trace = true;
    } else if (arg == "run" && !run && i + 1 < argc) {
      run = true;
      scriptPath = argv[++i];
    } else {
      return Usage();
    }
  }
  if (!run) return Usage();

  std::ifstream file;
  if (scriptPath != "-") {
    file.open(scriptPath);
    if (!file) {
      std::cerr << "imageedit: cannot open '" << scriptPath << "'\n";
      return script::kExitFailure;
    }
  }
  std::istream& script = scriptPath == "-" ? std::cin : file;
  const std::string name = scriptPath == "-" ? "<stdin>" : scriptPath;
  try {
    script::ScriptRunner runner(std::cout, options);
    return runner.Run(script, name, std::cerr);
  } catch (const std::exception& error) {
    std::cout.flush();
    std::cerr << "imageedit: " << error.what() << '\n';
    return script::kExitFailure;
  }
}
