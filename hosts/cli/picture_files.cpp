#include "picture_files.h"

#include "imageio/bitmap_file_writer.h"
#include "imageio/png_file_writer.h"
#include "pixels/pixel_buffer.h"

namespace script {

PictureResult WritePictureFile(HBITMAP bitmap, const std::string& path) {
  HDC screen = GetDC(nullptr);
  const PixelBuffer pixels = ReadBitmapPixels(screen, bitmap);
  ReleaseDC(nullptr, screen);
  if (!pixels) return PictureResult::NoPicture;
  const bool written =
      path.ends_with(".png")
          ? imageio::WritePngFile(path, pixels.width(), pixels.height(), pixels.stride(), pixels.data())
          : imageio::WriteDib24File(path, pixels.width(), pixels.height(), pixels.data());
  return written ? PictureResult::Written : PictureResult::NotWritten;
}

}  // namespace script
