// The script's side of everything that needs a person: it prints what a person would
// see (message boxes, menus, dialogs, events, and with --trace the cursor) one line
// each, and answers menus and dialogs from the answers the script queued beforehand.
// A menu or dialog with no queued answer is cancelled, and the output says so.
#pragma once

#include <deque>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "control/module/module_abi.h"
#include "platform/platform.h"
#include "script_parser.h"

namespace script {

class ScriptHost : public platform::Host {
 public:
  ScriptHost(std::ostream& out, bool trace) : out_(out), trace_(trace) {}

  // Each answer is used by the next menu or dialog of its kind; nullopt cancels it.
  void QueueMenuAnswer(std::optional<UINT> commandId) { menuAnswers_.push_back(commandId); }
  // A chosen colour may also be put into one of the dialog's custom-colour boxes
  // (0 to 15), as a person does with "Add to Custom Colors".
  void QueueColorAnswer(std::optional<COLORREF> color, std::optional<int> customBox = std::nullopt) {
    colorAnswers_.push_back(color ? std::optional<ColorAnswer>(ColorAnswer{*color, customBox})
                                  : std::nullopt);
  }
  void QueueFontAnswer(std::optional<FontChoice> font) { fontAnswers_.push_back(font); }
  // The next dialog is shot, as it shows, to the picture file before it closes.
  void QueueDialogShot(std::string path) { dialogShots_.push_back(std::move(path)); }

  void ShowCursor(int resourceId) override;
  UINT ShowPopupMenu(HMENU menu, int x, int y) override;
  int ShowMessageBox(const std::string& text, const std::string& caption, UINT type) override;
  bool ChooseColor(COLORREF& color, std::span<COLORREF, 16> customColors) override;
  bool ChooseFont(LOGFONTA& font, COLORREF& color) override;
  int ShowDialog(const platform::DialogLayout& dialog) override;

 private:
  struct ColorAnswer {
    COLORREF color;
    std::optional<int> customBox;
  };
  template <typename T>
  static std::optional<std::optional<T>> TakeAnswer(std::deque<std::optional<T>>& answers);

  std::ostream& out_;
  bool trace_;
  std::optional<int> shownCursor_;
  std::deque<std::optional<UINT>> menuAnswers_;
  std::deque<std::optional<ColorAnswer>> colorAnswers_;
  std::deque<std::optional<FontChoice>> fontAnswers_;
  std::deque<std::string> dialogShots_;
};

// Prints every event the control fires: `event NAME ARGS...`. It is the sink the
// script host connects to the control's event interface; the host owns it for the
// length of the run, so its reference count only answers.
class EventPrinter final : public ocx::IDispatch {
 public:
  explicit EventPrinter(std::ostream& out) : out_(out) {}

  ocx::HRESULT QueryInterface(ocx::REFIID riid, void** object) override;
  ocx::ULONG AddRef() override { return 1; }
  ocx::ULONG Release() override { return 1; }
  ocx::HRESULT GetTypeInfoCount(ocx::UINT* count) override;
  ocx::HRESULT GetTypeInfo(ocx::UINT, ocx::LCID, ocx::ITypeInfo**) override { return ocx::E_NOTIMPL; }
  ocx::HRESULT GetIDsOfNames(ocx::REFIID, ocx::LPOLESTR*, ocx::UINT, ocx::LCID, ocx::DISPID*) override {
    return ocx::E_NOTIMPL;
  }
  ocx::HRESULT Invoke(ocx::DISPID dispid, ocx::REFIID riid, ocx::LCID locale, ocx::WORD flags,
                      ocx::DISPPARAMS* params, ocx::VARIANT* result, ocx::EXCEPINFO* exception,
                      ocx::UINT* argError) override;

 private:
  std::ostream& out_;
};

// A variant as the script would write it: a quoted string, a number, or null.
std::string FormatVariant(const ocx::VARIANT& value);

}  // namespace script
