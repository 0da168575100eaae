// The ids of the module's resources besides the cursors (cursor_table.h), and its
// version. Every resource carries the Korean language tag (0x0412) the module was
// made with; the texts are English.
#pragma once

#include "platform/user.h"

namespace resources {

inline constexpr int kAboutDialogId = 1;
inline constexpr int kPropertyPageDialogId = 200;
inline constexpr int kModuleIconId = 1;
inline constexpr int kToolboxBitmapId = 1;
inline constexpr int kToolboxBitmapWidth = 16;
inline constexpr int kToolboxBitmapHeight = 15;
// Strings: the control's and the page's type names, the page's caption, and the
// module's title, which the framework's message boxes are captioned with.
inline constexpr int kControlTypeNameString = 1;
inline constexpr int kPropertyPageTypeNameString = 2;
inline constexpr int kPropertyPageCaptionString = 200;
inline constexpr int kModuleTitleString = 57344;

inline constexpr WORD kResourceLanguage = 0x0412;

// The version block: file and product version 1.1.0.1, a self-registering DLL.
struct ModuleVersion {
  WORD parts[4];
  const char* internalName;
  const char* originalFileName;
  const char* fileDescription;
  const char* productName;
  bool selfRegistering;
};
inline constexpr ModuleVersion kModuleVersion{{1, 1, 0, 1},
                                              "OstrelImageEditCtrl",
                                              "OstrelImageEditCtrl.OCX",
                                              "Image Edit Control module",
                                              "Image Edit Control",
                                              true};

// Registers the strings, the two dialogs, the icon and the toolbox bitmap (16 x 15, for
// a container's palette of controls) with the platform.
void RegisterStringsDialogsAndPictures();
// Shows the property page, dialog 200 captioned with string 200, through the host:
// the button that closed it, or -1 when it could not be shown.
int ShowPropertyPage();

}  // namespace resources

// Makes the module's resources (the cursors, the strings, the dialogs and the icon)
// known to the platform, as loading the module does; runs once.
void RegisterModuleResources();
