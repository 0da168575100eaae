// The host every test program installs: it records what a person would have seen
// (message boxes, dialogs, cursors, presented frames, popup menus) and answers a
// popup menu with `menuAnswer`.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/host.h"
#include "platform/platform.h"
#include "platform/user.h"

class RecordingHost : public platform::Host {
 public:
  struct Message {
    std::string text;
    std::string caption;
    UINT type;
  };
  struct PictureOutcome {
    std::string source;
    DWORD error;
    std::string message;
    bool operator==(const PictureOutcome&) const = default;
  };

  void PresentFrame(HWND) override { ++presented; }
  void ShowCursor(int resourceId) override { cursors.push_back(resourceId); }
  UINT ShowPopupMenu(HMENU menu, int x, int y) override {
    shownMenu = menu;
    menuX = x;
    menuY = y;
    return menuAnswer;
  }
  int ShowMessageBox(const std::string& text, const std::string& caption, UINT type) override {
    messages.push_back({text, caption, type});
    return IDOK;
  }
  int ShowDialog(const platform::DialogLayout& dialog) override {
    dialogs.push_back(dialog);
    return IDOK;
  }
  void PictureRead(const std::string& source, DWORD error, const std::string& message) override {
    pictures.push_back({source, error, message});
  }
  // The colour and font dialogs take their answer, if one is set, and are cancelled
  // otherwise; what they were opened with is kept.
  bool ChooseColor(COLORREF& color, std::span<COLORREF, 16>) override {
    colorOpenedWith = color;
    if (!colorAnswer) return false;
    color = *colorAnswer;
    return true;
  }
  bool ChooseFont(LOGFONTA& font, COLORREF& color) override {
    fontOpenedWith = font;
    if (!fontAnswer) return false;
    font = fontAnswer->font;
    color = fontAnswer->color;
    return true;
  }

  std::vector<Message> messages;
  std::vector<platform::DialogLayout> dialogs;
  std::vector<PictureOutcome> pictures;
  std::vector<int> cursors;
  int presented = 0;
  HMENU shownMenu = nullptr;
  int menuX = 0;
  int menuY = 0;
  UINT menuAnswer = 0;
  struct FontAnswer {
    LOGFONTA font;
    COLORREF color;
  };
  std::optional<COLORREF> colorAnswer;
  std::optional<COLORREF> colorOpenedWith;
  std::optional<FontAnswer> fontAnswer;
  std::optional<LOGFONTA> fontOpenedWith;
};

// A recording host that is the platform's host for as long as it lives.
class InstalledRecordingHost : public RecordingHost {
 public:
  InstalledRecordingHost() { platform::SetHost(this); }
  ~InstalledRecordingHost() override { platform::SetHost(nullptr); }
  InstalledRecordingHost(const InstalledRecordingHost&) = delete;
  InstalledRecordingHost& operator=(const InstalledRecordingHost&) = delete;
};
