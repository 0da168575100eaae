#include "editor/user_messages.h"

#include "resources/localized_text.h"

UserMessages::UserMessages() : language(static_cast<WORD>(GetUserDefaultLangID() & 0x3FF)) {}

void ShowOutOfMemory(WORD language) { AfxMessageBox(kOutOfMemoryText.For(language), MB_ICONHAND | MB_OK, 0); }

void UserMessages::ReportOutOfMemory() const {
  if (verbose) ShowOutOfMemory(language);
}
