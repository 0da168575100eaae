#include "pixels/pixel_buffer.h"

#include <new>

namespace {
std::size_t g_limit = kDefaultPixelBufferLimit;
}

BYTE* AllocatePixelBuffer(std::size_t bytes) {
  if (bytes > g_limit) return nullptr;
  return new (std::nothrow) BYTE[bytes == 0 ? 1 : bytes];
}

void FreePixelBuffer(BYTE* buffer) { delete[] buffer; }

void SetPixelBufferLimit(std::size_t bytes) { g_limit = bytes; }

std::size_t PixelBufferLimit() { return g_limit; }
