// How the editor speaks to the person: in the user's language (taken once, when the
// editor is made), and about failures only while the verbose flag is set.
#pragma once

#include "imageio/bitmap_file_writer.h"
#include "imageio/image_loader.h"
#include "pixels/pixel_rect.h"
#include "platform/platform.h"

// The out-of-memory message box in that language.
void ShowOutOfMemory(WORD language);

struct UserMessages {
  UserMessages();

  // The out-of-memory message box, while verbose.
  void ReportOutOfMemory() const;
  // The same for the pixel passes, which call it when their working memory cannot be
  // had.
  OutOfMemoryHandler OutOfMemoryReporter() const {
    return [this] { ReportOutOfMemory(); };
  }
  // What the image loader and the bitmap writer need to report their failures, for
  // an editor whose window is `window`.
  imageio::LoadContext LoadContext(HWND window) const { return {window, verbose, language}; }
  imageio::WriteContext WriteContext(HWND window) const { return {window, verbose, language}; }

  // The primary language of the user's default language.
  WORD language;
  bool verbose = false;
};
