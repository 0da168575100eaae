// The loader's platform services in a web page: the bytes and pixels the page prepared
// (prepared_pictures.h); a path the page did not prepare is read from the in-memory
// file system, where saved bitmaps go.
#include <algorithm>
#include <map>
#include <memory>
#include <new>

#ifdef __wasm_simd128__
#include <wasm_simd128.h>
#endif

#include "imageio/jpeg_repair.h"
#include "imageio/picture_codecs.h"
#include "imageio/picture_source.h"
#include "imageio/pixel_limits.h"
#include "imageio/prepared_pictures.h"
#include "platform/kernel.h"

namespace imageio {
namespace {

struct PreparedPicture {
  DWORD error = 0;  // non-zero: the fetch failed with this code
  PictureBytes bytes;
  int width = 0;  // 0: the browser could not decode the bytes
  int height = 0;
  std::unique_ptr<std::uint8_t[]> rgba;
};

std::map<std::string, PreparedPicture>& Prepared() {
  static std::map<std::string, PreparedPicture> pictures;
  return pictures;
}

const PreparedPicture* Find(const std::string& source) {
  const auto it = Prepared().find(source);
  return it == Prepared().end() ? nullptr : &it->second;
}

// The browser's decoded pixels (red, green, blue and alpha bytes) as the bitmap's
// words, shown over white. An opaque pixel, as every pixel of a JPEG is, comes out as
// it went in, so its bytes are only reordered: four pixels at a time with vector
// instructions, which leaves the blend to groups holding a pixel that is not opaque.
void PixelsOverWhite(const std::uint8_t* rgba, std::uint32_t* pixels, std::size_t count) {
  std::size_t i = 0;
#ifdef __wasm_simd128__
  const v128_t alpha = wasm_i32x4_splat(static_cast<std::int32_t>(0xFF000000u));
  const v128_t zero = wasm_i32x4_splat(0);
  for (; i + 4 <= count; i += 4) {
    const v128_t in = wasm_v128_load(rgba + 4 * i);
    if (!wasm_i32x4_all_true(wasm_i32x4_eq(wasm_v128_and(in, alpha), alpha))) {
      for (std::size_t k = i; k < i + 4; ++k)
        pixels[k] = OverWhite(rgba[4 * k], rgba[4 * k + 1], rgba[4 * k + 2], rgba[4 * k + 3]);
      continue;
    }
    // Bytes red, green, blue, alpha become blue, green, red, 0: the word 0x00RRGGBB.
    wasm_v128_store(pixels + i,
                    wasm_i8x16_shuffle(in, zero, 2, 1, 0, 16, 6, 5, 4, 16, 10, 9, 8, 16, 14, 13, 12, 16));
  }
#endif
  for (; i < count; ++i)
    pixels[i] = OverWhite(rgba[4 * i], rgba[4 * i + 1], rgba[4 * i + 2], rgba[4 * i + 3]);
}

// Both a URL and a path the page prepared come from the table; a path it did not
// prepare is read from the in-memory file system. Only a string the page could not
// even try to fetch (the empty one) is missing as a URL.
bool CopyPrepared(const PreparedPicture& picture, PictureBytes* bytes) {
  if (picture.error != 0) {
    SetLastError(picture.error);
    return false;
  }
  if (!bytes->Allocate(picture.bytes.count)) return false;
  std::copy_n(picture.bytes.data.data(), picture.bytes.count, bytes->data.data());
  bytes->count = picture.bytes.count;
  return true;
}

}  // namespace

// Pictures can be large: storage that cannot be had is refused (null), and the page
// reports it, rather than ending the program.
std::uint8_t* PreparePictureBytes(const std::string& source, std::size_t count) {
  PreparedPicture& picture = Prepared()[source] = PreparedPicture{};
  if (!picture.bytes.Allocate(count)) return nullptr;
  picture.bytes.count = count;
  return picture.bytes.data.data();
}

std::size_t RepairPreparedBytes(const std::string& source) {
  PictureBytes& bytes = Prepared()[source].bytes;
  if (!bytes.data.empty()) bytes.count = RepairJpegEndMarker(bytes.data.data(), bytes.count);
  return bytes.count;
}

std::uint8_t* PreparePicturePixels(const std::string& source, int width, int height) {
  PreparedPicture& picture = Prepared()[source];
  if (!PictureSizeAcceptable(width, height)) return nullptr;
  const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
  picture.rgba.reset(new (std::nothrow) std::uint8_t[count]);
  if (picture.rgba) {
    picture.width = width;
    picture.height = height;
  }
  return picture.rgba.get();
}

void PreparePictureFailure(const std::string& source, DWORD error) {
  Prepared()[source] = PreparedPicture{error};
}

void ForgetPreparedPictures() { Prepared().clear(); }

bool FetchUrl(const std::string& url, PictureBytes* bytes) {
  const PreparedPicture* picture = Find(url);
  if (picture == nullptr) {
    SetLastError(ERROR_INTERNET_INVALID_URL);
    return false;
  }
  return CopyPrepared(*picture, bytes);
}

bool ReadPictureFile(const std::string& name, PictureBytes* bytes) {
  const PreparedPicture* picture = Find(name);
  return picture ? CopyPrepared(*picture, bytes) : ReadLocalFile(name, bytes);
}

HBITMAP DecodePicture(const std::string& name, const std::uint8_t* data, std::size_t count) {
  // The browser decodes icons too; the platform picture loader gives them no bitmap.
  const PictureFormat format = DetectPictureFormat(data, count);
  if (format == PictureFormat::Icon || format == PictureFormat::Metafile) return nullptr;
  const PreparedPicture* picture = Find(name);
  if (picture == nullptr || picture->width == 0) return nullptr;
  std::uint32_t* pixels = nullptr;
  HBITMAP section = NewPictureSection(picture->width, picture->height, &pixels);
  if (section == nullptr) return nullptr;
  PixelsOverWhite(picture->rgba.get(), pixels,
                  static_cast<std::size_t>(picture->width) * static_cast<std::size_t>(picture->height));
  return section;
}

}  // namespace imageio
