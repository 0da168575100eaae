// One inserted object (balloon text or icon) floating above the picture.
#pragma once

#include "platform/platform.h"

class CInsertedObject {
 public:
  CInsertedObject() = default;
  // An object is copied deeply (its bitmaps duplicated) by an explicit copy operation
  // once it has content; plain copies would share handles.
  CInsertedObject(const CInsertedObject&) = delete;
  CInsertedObject& operator=(const CInsertedObject&) = delete;
  CInsertedObject(CInsertedObject&&) = default;
  CInsertedObject& operator=(CInsertedObject&&) = default;
};
