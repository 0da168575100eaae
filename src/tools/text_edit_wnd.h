// The hidden child window in which the user types text over the picture.
#pragma once

#include "platform/platform.h"

class CTextEditWnd : public CWnd {
 public:
  BOOL PreCreateWindow(CREATESTRUCTA& cs) override;
};
