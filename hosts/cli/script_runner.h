// Runs a script against one control that the control module makes: it loads the
// module, holds the control and the host interface for the length of the run, and
// executes one statement a line.
#pragma once

#include <istream>
#include <memory>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "hosted_control.h"
#include "loaded_module.h"
#include "script_host.h"
#include "script_parser.h"

namespace script {

// Exit statuses of a run.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;      // the run could not finish (unreadable input, unwritable file)
inline constexpr int kExitScriptError = 2;  // a statement is malformed or names nothing

// A statement that is well formed but cannot be carried out (a file cannot be
// written, a surface does not exist): the run stops with kExitFailure.
class RunFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct RunOptions {
  bool trace = false;  // print `cursor N` whenever the cursor changes
};

class ScriptRunner {
 public:
  ScriptRunner(std::ostream& out, RunOptions options);
  ~ScriptRunner();
  ScriptRunner(const ScriptRunner&) = delete;
  ScriptRunner& operator=(const ScriptRunner&) = delete;

  // Executes every line of `script`. On the first bad statement writes
  // "imageedit: NAME:LINE: what is wrong" to `err` (after flushing `out`) and returns
  // its exit status; kExitOk when the script ran to its end.
  int Run(std::istream& script, const std::string& scriptName, std::ostream& err);

 private:
  using Args = std::span<const Token>;
  struct Statement {
    const char* name;
    void (ScriptRunner::*execute)(Args args);
    bool needsControl;  // creates the default control first when none exists
  };
  static const std::vector<Statement>& Statements();

  void Execute(const std::vector<Token>& tokens);
  void CreateControl(int width, int height);
  void EnsureControl();
  HWND HostWindow() const { return control_->hostWindow(); }

  // statements
  void Create(Args args);
  void Lang(Args args);
  void Keyboard(Args args);
  void Memory(Args args);
  void Down(Args args);
  void Move(Args args);
  void Up(Args args);
  void Hover(Args args);
  void RightDown(Args args);
  void RightUp(Args args);
  void DoubleClick(Args args);
  void Key(Args args);
  void Type(Args args);
  void Wait(Args args);
  void Answer(Args args);
  void HScroll(Args args);
  void VScroll(Args args);
  void Shot(Args args);
  void Dump(Args args);
  void State(Args args);
  void Properties(Args args);
  void CallMethod(const FunctionDescription& method, Args args);

  void Mouse(UINT message, Args args);
  void Scroll(UINT message, Args args);
  void WritePicture(HBITMAP bitmap, const std::string& path, const std::string& what);

  std::ostream& out_;
  ScriptHost host_;
  EventPrinter events_;
  // Loaded with the first control; the control goes before the module.
  std::unique_ptr<LoadedModule> module_;
  std::unique_ptr<HostedControl> control_;
};

}  // namespace script
