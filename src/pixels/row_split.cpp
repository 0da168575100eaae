#include "pixels/row_split.h"

#if !defined(__EMSCRIPTEN__) || defined(__EMSCRIPTEN_PTHREADS__)
#include <condition_variable>
#include <mutex>
#include <thread>
#define IE_PIXELS_THREADS 1

namespace {

// Below this many pixels handing rows to the helper costs more than it saves.
constexpr long kThreadedPixels = 1L << 18;

// The one thread that takes a part of a pass's rows. Starting a thread per pass costs
// more than a short pass (in a page it is a round trip to the worker that runs it),
// so the thread is started once and waits between passes. One pass at a time owns
// it: a pass on another thread meanwhile, or one started from inside a part, runs all
// its parts on its own thread instead of waiting.
class PartHelper {
 public:
  PartHelper() : thread_([this] { Serve(); }) {}
  ~PartHelper() {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      stopping_ = true;
    }
    wake_.notify_one();
    thread_.join();
  }
  PartHelper(const PartHelper&) = delete;
  PartHelper& operator=(const PartHelper&) = delete;

  static PartHelper& Instance() {
    static PartHelper helper;
    return helper;
  }

  // Starts job on the helper and returns true, or returns false at once when another
  // pass owns it. A true start must be followed by Finish() on the same thread
  // before job goes away.
  bool Start(const std::function<void()>& job) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (owned_) return false;
    owned_ = true;
    job_ = &job;
    wake_.notify_one();
    return true;
  }
  // Waits until the started job has run, and frees the helper for the next pass.
  void Finish() {
    std::unique_lock<std::mutex> lock(mutex_);
    done_.wait(lock, [this] { return job_ == nullptr; });
    owned_ = false;
  }

 private:
  void Serve() {
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
      wake_.wait(lock, [this] { return stopping_ || job_ != nullptr; });
      if (job_ == nullptr) return;  // stopping, with nothing started
      const std::function<void()>* job = job_;
      lock.unlock();
      (*job)();
      lock.lock();
      job_ = nullptr;
      done_.notify_one();
    }
  }

  std::mutex mutex_;
  std::condition_variable wake_;
  std::condition_variable done_;
  const std::function<void()>* job_ = nullptr;  // started and not yet run
  bool owned_ = false;                          // a pass holds the helper
  bool stopping_ = false;
  std::thread thread_;  // last: it starts once the members it reads are ready
};

}  // namespace
#endif

std::vector<RowPart> RowParts(int height, int width) {
  if (height <= 0 || width <= 0) return {};
#ifdef IE_PIXELS_THREADS
  if (static_cast<long>(width) * height >= kThreadedPixels && height >= 2) {
    return {{0, height / 2}, {height / 2, height}};
  }
#endif
  return {{0, height}};
}

void RunParts(const std::vector<RowPart>& parts, const std::function<void(std::size_t part)>& work) {
  if (parts.empty()) return;
#ifdef IE_PIXELS_THREADS
  // The first part goes to the helper when there is more than one and it is free;
  // every other part, and the first too when the helper is not free, runs here.
  const std::function<void()> first = [&work] { work(0); };
  struct Handed {  // waits for the helper's part however this thread's parts end
    PartHelper* helper;
    ~Handed() {
      if (helper != nullptr) helper->Finish();
    }
  } handed{nullptr};
  if (parts.size() > 1 && PartHelper::Instance().Start(first)) handed.helper = &PartHelper::Instance();
  for (std::size_t i = handed.helper != nullptr ? 1 : 0; i < parts.size(); ++i) work(i);
#else
  for (std::size_t i = 0; i < parts.size(); ++i) work(i);
#endif
}

void SplitRows(int height, int width, const std::function<void(int first, int end)>& rows) {
  const std::vector<RowPart> parts = RowParts(height, width);
  RunParts(parts, [&](std::size_t i) { rows(parts[i].first, parts[i].end); });
}
