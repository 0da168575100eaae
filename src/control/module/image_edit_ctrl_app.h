// The module object: it knows what keeps the module loaded, the objects it has made
// that are still alive and the locks its hosts hold. Everything runs on the host's
// thread, so plain counts do.
#pragma once

class CImageEditCtrlApp {
 public:
  void ObjectCreated() { ++objects_; }
  void ObjectDestroyed() { --objects_; }
  void Lock() { ++locks_; }
  // False, changing nothing, when no lock is held.
  bool Unlock() {
    if (locks_ == 0) return false;
    --locks_;
    return true;
  }
  // True when no object and no lock is alive.
  bool CanUnloadNow() const { return objects_ == 0 && locks_ == 0; }

 private:
  int objects_ = 0;
  int locks_ = 0;
};

// The one module object, made when the module loads.
CImageEditCtrlApp& TheModule();
