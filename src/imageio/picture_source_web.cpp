// The loader's platform services in a web page: the bytes and pixels the page prepared
// (prepared_pictures.h); a path the page did not prepare is read from the in-memory
// file system, where saved bitmaps go.
#include <map>
#include <new>
#include <vector>

#include "imageio/picture_codecs.h"
#include "imageio/picture_source.h"
#include "imageio/pixel_limits.h"
#include "imageio/prepared_pictures.h"
#include "platform/kernel.h"

namespace imageio {
namespace {

struct PreparedPicture {
  DWORD error = 0;  // non-zero: the fetch failed with this code
  std::vector<std::uint8_t> bytes;
  int width = 0;  // 0: the browser could not decode the bytes
  int height = 0;
  std::vector<std::uint8_t> rgba;
};

std::map<std::string, PreparedPicture>& Prepared() {
  static std::map<std::string, PreparedPicture> pictures;
  return pictures;
}

const PreparedPicture* Find(const std::string& source) {
  const auto it = Prepared().find(source);
  return it == Prepared().end() ? nullptr : &it->second;
}

// Storage that may be refused: pictures can be large, and a refusal must reach the
// page as "no memory" rather than end the program.
std::uint8_t* Resize(std::vector<std::uint8_t>& storage, std::size_t count) {
  try {
    storage.resize(count);
  } catch (const std::bad_alloc&) {
    storage.clear();
    return nullptr;
  }
  return storage.data();
}

}  // namespace

std::uint8_t* PreparePictureBytes(const std::string& source, std::size_t count) {
  PreparedPicture& picture = Prepared()[source] = PreparedPicture{};
  return Resize(picture.bytes, count);
}

std::uint8_t* PreparePicturePixels(const std::string& source, int width, int height) {
  PreparedPicture& picture = Prepared()[source];
  if (!PictureSizeAcceptable(width, height)) return nullptr;
  std::uint8_t* pixels = Resize(picture.rgba, static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
  if (pixels != nullptr) {
    picture.width = width;
    picture.height = height;
  }
  return pixels;
}

void PreparePictureFailure(const std::string& source, DWORD error) { Prepared()[source] = PreparedPicture{error}; }

void ForgetPreparedPictures() { Prepared().clear(); }

bool FetchUrl(const std::string& url, std::string* localName) {
  const PreparedPicture* picture = Find(url);
  if (picture == nullptr || picture->error != 0) {
    // Only a string the page could not even try to fetch (the empty one) is missing.
    SetLastError(picture == nullptr ? ERROR_INTERNET_INVALID_URL : picture->error);
    return false;
  }
  *localName = url;
  return true;
}

bool ReadPictureFile(const std::string& name, PictureBytes* bytes) {
  const PreparedPicture* picture = Find(name);
  if (picture == nullptr) return ReadLocalFile(name, bytes);
  if (picture->error != 0) {
    SetLastError(picture->error);
    return false;
  }
  bytes->data.reset(new (std::nothrow) std::uint8_t[picture->bytes.size() + kSpareBytes]);
  if (!bytes->data) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return false;
  }
  std::copy(picture->bytes.begin(), picture->bytes.end(), bytes->data.get());
  bytes->count = picture->bytes.size();
  return true;
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
  const std::uint8_t* rgba = picture->rgba.data();
  const std::size_t pixelCount = picture->rgba.size() / 4;
  for (std::size_t i = 0; i < pixelCount; ++i, rgba += 4) pixels[i] = OverWhite(rgba[0], rgba[1], rgba[2], rgba[3]);
  return section;
}

}  // namespace imageio
