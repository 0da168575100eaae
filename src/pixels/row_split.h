// Runs a pass over rows on two threads, each taking one part of them: the calling
// thread and a helper thread that is started on first use and kept for the process.
// Every pass that uses it computes each row from what it read before the pass, so the
// result is the same bytes as one thread would give; small passes, builds without
// threads (WebAssembly without its thread support), and a pass that finds the helper
// taken by another pass stay on the calling thread.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

// Rows [first, end) of a pass.
struct RowPart {
  int first;
  int end;
};

// The parts a pass over `height` rows of `width` pixels is split into: every row in
// exactly one, in order; one part unless a second thread is worth starting.
std::vector<RowPart> RowParts(int height, int width);
// Calls work(i) for every part parts[i], the first on the helper thread when there
// are several and it is free, and returns once all are done.
void RunParts(const std::vector<RowPart>& parts, const std::function<void(std::size_t part)>& work);
// Both: rows(first, end) over the parts of the rows.
void SplitRows(int height, int width, const std::function<void(int first, int end)>& rows);
