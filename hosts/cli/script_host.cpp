#include "script_host.h"

#include <algorithm>
#include <cstring>

#include "control/module/registry/type_library.h"
#include "picture_files.h"
#include "platform/gdi_handles.h"
#include "platform/kernel.h"

namespace script {

template <typename T>
std::optional<std::optional<T>> ScriptHost::TakeAnswer(std::deque<std::optional<T>>& answers) {
  if (answers.empty()) return std::nullopt;
  std::optional<T> answer = answers.front();
  answers.pop_front();
  return answer;
}

void ScriptHost::ShowCursor(int resourceId) {
  // A person notices a cursor only when it changes.
  if (shownCursor_ == resourceId) return;
  shownCursor_ = resourceId;
  if (!trace_) return;
  if (resourceId < 0) {
    out_ << "cursor none\n";
  } else {
    out_ << "cursor " << resourceId << '\n';
  }
}

namespace {

// Lists the menu as a person reads it, one item a line, submenus indented; returns
// whether `commandId` is an enabled command anywhere in it.
bool PrintMenu(std::ostream& out, HMENU menu, const std::string& indent, std::optional<UINT> commandId) {
  bool found = false;
  for (const platform::MenuItem& item : platform::MenuItems(menu)) {
    if (item.separator) {
      out << indent << "----\n";
    } else if (item.submenu != nullptr) {
      out << indent << "submenu " << QuoteString(item.text) << '\n';
      found = PrintMenu(out, item.submenu, indent + "  ", commandId) || found;
    } else {
      out << indent << "item " << item.id << ' ' << QuoteString(item.text) << (item.grayed ? " grayed" : "")
          << (item.checked ? " checked" : "") << '\n';
      found = found || (commandId == item.id && !item.grayed);
    }
  }
  return found;
}

}  // namespace

UINT ScriptHost::ShowPopupMenu(HMENU menu, int x, int y) {
  out_ << "menu shown at " << x << ' ' << y << '\n';
  const auto answer = TakeAnswer(menuAnswers_);
  const bool enabled = PrintMenu(out_, menu, "  ", answer ? *answer : std::nullopt);
  if (!answer) {
    out_ << "menu cancelled (no answer queued)\n";
    return 0;
  }
  if (!*answer) {
    out_ << "menu cancelled\n";
    return 0;
  }
  // A person can only pick what the menu offers and is enabled.
  if (!enabled) {
    out_ << "menu cancelled (" << **answer << " is not an enabled item)\n";
    return 0;
  }
  out_ << "menu chose " << **answer << '\n';
  return **answer;
}

int ScriptHost::ShowMessageBox(const std::string& text, const std::string& /*caption*/, UINT /*type*/) {
  out_ << "messagebox " << QuoteString(text) << '\n';
  return IDOK;
}

bool ScriptHost::ChooseColor(COLORREF& color, std::span<COLORREF, 16> customColors) {
  out_ << "color dialog shown\n";
  // The custom-colour boxes a person sees filled (black ones look empty).
  for (std::size_t box = 0; box < customColors.size(); ++box) {
    if (customColors[box] != 0) out_ << "  custom " << box << ' ' << FormatRgbHex(customColors[box]) << '\n';
  }
  const auto answer = TakeAnswer(colorAnswers_);
  if (!answer || !*answer) {
    out_ << (answer ? "color dialog cancelled\n" : "color dialog cancelled (no answer queued)\n");
    return false;
  }
  color = (*answer)->color;
  out_ << "color dialog chose " << FormatRgbHex(color);
  if (const std::optional<int> box = (*answer)->customBox) {
    customColors[static_cast<std::size_t>(*box)] = color;
    out_ << " (custom " << *box << ')';
  }
  out_ << '\n';
  return true;
}

bool ScriptHost::ChooseFont(LOGFONTA& font, COLORREF& color) {
  out_ << "font dialog shown\n";
  const auto answer = TakeAnswer(fontAnswers_);
  if (!answer || !*answer) {
    out_ << (answer ? "font dialog cancelled\n" : "font dialog cancelled (no answer queued)\n");
    return false;
  }
  // The dialog edits the description it was given: only what a person picks in it
  // changes (face, size at the screen's 96 pixels an inch, weight and effects).
  const FontChoice& choice = **answer;
  std::memset(font.lfFaceName, 0, sizeof font.lfFaceName);
  std::memcpy(font.lfFaceName, choice.face.data(), std::min(choice.face.size(), sizeof font.lfFaceName - 1));
  font.lfHeight = -MulDiv(choice.points, 96, 72);
  font.lfWeight = choice.bold ? 700 : 400;
  font.lfItalic = choice.italic ? 1 : 0;
  font.lfUnderline = choice.underline ? 1 : 0;
  font.lfStrikeOut = choice.strikeOut ? 1 : 0;
  color = choice.color;
  out_ << "font dialog chose " << QuoteString(choice.face) << ' ' << choice.points << '\n';
  return true;
}

namespace {

const char* ItemKindName(platform::DialogLayout::ItemKind kind) {
  switch (kind) {
    case platform::DialogLayout::ItemKind::Icon:
      return "icon";
    case platform::DialogLayout::ItemKind::Text:
      return "text";
    case platform::DialogLayout::ItemKind::Button:
      return "button";
    case platform::DialogLayout::ItemKind::DefaultButton:
      return "default button";
  }
  return "item";
}

}  // namespace

// A dialog is read, shot when a shot is queued, and closed with OK: the module's
// dialogs offer nothing else to answer.
int ScriptHost::ShowDialog(const platform::DialogLayout& dialog) {
  out_ << "dialog " << QuoteString(dialog.caption) << " shown: dialog " << dialog.resourceId << ", "
       << dialog.client.cx << " x " << dialog.client.cy << (dialog.framed ? " framed" : "") << ", font "
       << QuoteString(dialog.fontFace) << ' ' << dialog.fontPoints << '\n';
  for (const platform::DialogLayout::Item& item : dialog.items) {
    out_ << "  " << ItemKindName(item.kind) << ' ';
    if (item.kind == platform::DialogLayout::ItemKind::Icon) {
      out_ << item.iconId;
    } else {
      out_ << QuoteString(item.text);
    }
    out_ << " at " << item.rect.left << ',' << item.rect.top << ' ' << item.rect.right - item.rect.left
         << " x " << item.rect.bottom - item.rect.top << '\n';
  }
  if (!dialogShots_.empty()) {
    const std::string path = std::move(dialogShots_.front());
    dialogShots_.pop_front();
    const platform::OwnedBitmap picture(platform::DrawDialogPicture(dialog));
    const bool written = WritePictureFile(picture.get(), path) == PictureResult::Written;
    out_ << "  shot " << QuoteString(path) << (written ? "" : " could not be written") << '\n';
  }
  out_ << "dialog " << QuoteString(dialog.caption) << " closed with OK\n";
  return IDOK;
}

ocx::HRESULT EventPrinter::QueryInterface(ocx::REFIID riid, void** object) {
  if (object == nullptr) return ocx::E_POINTER;
  if (riid == ocx::IID_IUnknown || riid == ocx::IID_IDispatch || riid == ocx::DIID__DImageEditCtrlEvents) {
    *object = static_cast<ocx::IDispatch*>(this);
    return ocx::S_OK;
  }
  *object = nullptr;
  return ocx::E_NOINTERFACE;
}

ocx::HRESULT EventPrinter::GetTypeInfoCount(ocx::UINT* count) {
  if (count == nullptr) return ocx::E_POINTER;
  *count = 0;
  return ocx::S_OK;
}

// The event's name comes from the control's type library, which this program carries
// as a host built against the library does.
ocx::HRESULT EventPrinter::Invoke(ocx::DISPID dispid, ocx::REFIID, ocx::LCID, ocx::WORD,
                                  ocx::DISPPARAMS* params, ocx::VARIANT*, ocx::EXCEPINFO*, ocx::UINT*) {
  if (params == nullptr || (params->cArgs > 0 && params->rgvarg == nullptr)) return ocx::E_INVALIDARG;
  const TypeLibrary* library = EmbeddedTypeLibrary();
  const InterfaceDescription* events =
      library != nullptr ? library->FindInterface(ocx::DIID__DImageEditCtrlEvents) : nullptr;
  const FunctionDescription* event = events != nullptr ? events->FindFunction(dispid) : nullptr;
  out_ << "event " << (event != nullptr ? event->name : std::to_string(dispid));
  // Automation passes the arguments last one first.
  for (ocx::UINT i = params->cArgs; i > 0; --i) out_ << ' ' << FormatVariant(params->rgvarg[i - 1]);
  out_ << '\n';
  return ocx::S_OK;
}

std::string FormatVariant(const ocx::VARIANT& value) {
  switch (value.vt) {
    case ocx::VT_BSTR:
      if (value.bstrVal == nullptr) break;
      return QuoteString(NarrowFromWide(value.bstrVal, ocx::SysStringLen(value.bstrVal)));
    case ocx::VT_I4:
      return std::to_string(value.lVal);
    case ocx::VT_INT:
      return std::to_string(value.intVal);
    case ocx::VT_BOOL:
      return std::to_string(value.boolVal != ocx::VARIANT_FALSE ? 1 : 0);
    default:
      break;
  }
  return "null";
}

}  // namespace script
