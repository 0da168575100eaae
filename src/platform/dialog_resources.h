// The module's dialogs, strings, icons and bitmaps as USER finds them: the resources layer
// registers them at start-up, and they are then loaded by id as Windows loads a
// module's resources. A dialog is laid out from its dialog units in the pixels of its
// font, as Windows lays out a DS_SETFONT template, and shown through the host, which
// gets the layout (and can draw the dialog window as Windows would show it).
#pragma once

#include <string>
#include <vector>

#include "platform/types.h"
#include "platform/user.h"

inline constexpr DWORD WS_POPUP = 0x80000000;
inline constexpr DWORD WS_CAPTION = 0x00C00000;
inline constexpr DWORD WS_SYSMENU = 0x00080000;
inline constexpr DWORD WS_GROUP = 0x00020000;
inline constexpr DWORD WS_TABSTOP = 0x00010000;
inline constexpr DWORD DS_SETFONT = 0x40;
inline constexpr DWORD DS_MODALFRAME = 0x80;
inline constexpr DWORD SS_LEFT = 0x0;
inline constexpr DWORD SS_ICON = 0x3;
inline constexpr DWORD SS_TYPEMASK = 0x1F;
inline constexpr DWORD BS_DEFPUSHBUTTON = 0x1;
inline constexpr DWORD BS_TYPEMASK = 0xF;

// One control of a dialog template, placed in dialog units.
struct DialogItemTemplate {
  int id = -1;
  std::string className;  // "static" or "button"
  std::string text;       // an SS_ICON static shows icon `iconId` instead
  int iconId = 0;
  DWORD style = 0;
  int x = 0, y = 0, cx = 0, cy = 0;
};

// A dialog template (DS_SETFONT: its own font), placed in dialog units.
struct DialogTemplate {
  std::string caption;  // empty: the template has none
  DWORD style = 0;
  std::string fontFace;
  int fontPoints = 8;
  int x = 0, y = 0, cx = 0, cy = 0;
  std::vector<DialogItemTemplate> items;
};

// Bitmap resource `name` (MAKEINTRESOURCEA(id)) as a new bitmap the caller deletes;
// null when the module has none.
HBITMAP LoadBitmapA(HINSTANCE instance, LPCSTR name);
// Copies string resource `id` into the buffer (cut to size - 1 bytes and terminated);
// its length, or 0 when the module has no such string.
int LoadStringA(HINSTANCE instance, UINT id, LPSTR buffer, int size);

namespace platform {

void RegisterDialogResource(int id, DialogTemplate dialog);
void RegisterStringResource(int id, std::string text);
// An icon resource: one picture for each size it comes in.
void RegisterIconResource(int id, std::vector<CursorArtwork> images);
// A bitmap resource: an opaque picture (its alpha is ignored).
void RegisterBitmapResource(int id, CursorArtwork picture);
// The string resource, or empty when there is none.
std::string LoadStringResource(int id);
// The picture of icon `id` in the size closest to `size`; false when there is none.
bool GetIconArtwork(int id, int size, CursorArtwork* artwork);

// A dialog as the host shows it, in pixels.
struct DialogLayout {
  enum class ItemKind { Icon, Text, Button, DefaultButton };
  struct Item {
    int id = -1;
    ItemKind kind = ItemKind::Text;
    std::string text;
    int iconId = 0;
    RECT rect{};  // in the client area
  };
  int resourceId = 0;
  std::string caption;
  bool framed = false;  // a caption bar and a modal frame around the client area
  POINT position{};     // the template's place, in pixels
  SIZE client{};
  SIZE baseUnits{};  // of the dialog's font: 4 horizontal and 8 vertical dialog units
  std::string fontFace;
  int fontPoints = 0;
  std::vector<Item> items;
};

// Lays dialog resource `id` out; `caption` replaces the template's when not empty (a
// property page's caption comes from a string). False when there is no such dialog or
// its font cannot be made.
bool LayOutDialog(int id, const std::string& caption, DialogLayout* layout);
// Shows dialog resource `id` modally through the host: the id of the button that
// closed it, or -1 when there is no such dialog.
int ShowDialogResource(int id, const std::string& caption = {});
// The dialog window as it shows: frame and caption bar (when framed), the face, and
// every item. Null when the bitmap cannot be made; the caller deletes it.
HBITMAP DrawDialogPicture(const DialogLayout& layout);

}  // namespace platform
