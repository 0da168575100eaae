// One inserted object (balloon text or icon) floating above the picture.
#pragma once

#include "platform/platform.h"

class CInsertedObject {
 public:
  CInsertedObject() = default;
  ~CInsertedObject() = default;
  CInsertedObject(const CInsertedObject&) = delete;
  CInsertedObject& operator=(const CInsertedObject&) = delete;
};

inline constexpr int kMaxInsertedObjects = 5;
