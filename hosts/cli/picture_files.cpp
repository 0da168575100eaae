#include "picture_files.h"

#include <zlib.h>

#include <fstream>
#include <string_view>

namespace script {
namespace {

template <typename T>
void AppendBytes(std::vector<BYTE>& out, const T& value) {
  const auto* bytes = reinterpret_cast<const BYTE*>(&value);
  out.insert(out.end(), bytes, bytes + sizeof(T));
}

void AppendBigEndian(std::vector<BYTE>& out, std::uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<BYTE>(value >> shift));
}

// One PNG chunk: length, type, data and the CRC over type and data.
void AppendPngChunk(std::vector<BYTE>& out, const char (&type)[5], const std::vector<BYTE>& data) {
  AppendBigEndian(out, static_cast<std::uint32_t>(data.size()));
  const std::size_t typeStart = out.size();
  out.insert(out.end(), type, type + 4);
  out.insert(out.end(), data.begin(), data.end());
  const uLong crc = crc32(0L, out.data() + typeStart, static_cast<uInt>(out.size() - typeStart));
  AppendBigEndian(out, static_cast<std::uint32_t>(crc));
}

bool WriteFile(const std::vector<BYTE>& bytes, const std::string& path) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (!file) return false;
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  return static_cast<bool>(file.flush());
}

}  // namespace

DibPicture ReadDibPicture(HBITMAP bitmap) {
  DibPicture picture;
  BITMAP header{};
  if (bitmap == nullptr || GetObjectA(bitmap, sizeof header, &header) != sizeof header) return picture;
  if (header.bmWidth <= 0 || header.bmHeight <= 0) return picture;

  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = header.bmWidth;
  info.bmiHeader.biHeight = header.bmHeight;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  info.bmiHeader.biCompression = BI_RGB;
  const int stride = (header.bmWidth * 3 + 3) & ~3;
  std::vector<BYTE> bits(static_cast<std::size_t>(stride) * static_cast<std::size_t>(header.bmHeight));

  HDC screen = GetDC(nullptr);
  const int lines =
      GetDIBits(screen, bitmap, 0, static_cast<UINT>(header.bmHeight), bits.data(), &info, DIB_RGB_COLORS);
  ReleaseDC(nullptr, screen);
  if (lines != header.bmHeight) return picture;

  picture.width = header.bmWidth;
  picture.height = header.bmHeight;
  picture.stride = stride;
  picture.bits = std::move(bits);
  return picture;
}

bool WriteBmpFile(const DibPicture& picture, const std::string& path) {
  BITMAPFILEHEADER fileHeader{};
  BITMAPINFOHEADER infoHeader{};
  const auto offset = static_cast<DWORD>(sizeof fileHeader + sizeof infoHeader);
  fileHeader.bfType = 0x4D42;  // "BM"
  fileHeader.bfOffBits = offset;
  fileHeader.bfSize = offset + static_cast<DWORD>(picture.bits.size());
  infoHeader.biSize = sizeof infoHeader;
  infoHeader.biWidth = picture.width;
  infoHeader.biHeight = picture.height;
  infoHeader.biPlanes = 1;
  infoHeader.biBitCount = 24;
  infoHeader.biCompression = BI_RGB;
  infoHeader.biSizeImage = static_cast<DWORD>(picture.bits.size());

  std::vector<BYTE> bytes;
  AppendBytes(bytes, fileHeader);
  AppendBytes(bytes, infoHeader);
  bytes.insert(bytes.end(), picture.bits.begin(), picture.bits.end());
  return WriteFile(bytes, path);
}

bool WritePngFile(const DibPicture& picture, const std::string& path) {
  // Raw PNG scanlines: top-down, each led by filter type 0, pixels as R, G, B.
  const std::size_t rowBytes = static_cast<std::size_t>(picture.width) * 3;
  std::vector<BYTE> raw;
  raw.reserve((rowBytes + 1) * static_cast<std::size_t>(picture.height));
  for (int y = picture.height - 1; y >= 0; --y) {
    const BYTE* row =
        picture.bits.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.stride);
    raw.push_back(0);
    for (int x = 0; x < picture.width; ++x) {
      const BYTE* bgr = row + static_cast<std::size_t>(x) * 3;
      raw.insert(raw.end(), {bgr[2], bgr[1], bgr[0]});
    }
  }
  uLongf compressedSize = compressBound(static_cast<uLong>(raw.size()));
  std::vector<BYTE> compressed(compressedSize);
  if (compress2(compressed.data(), &compressedSize, raw.data(), static_cast<uLong>(raw.size()), 6) != Z_OK) {
    return false;
  }
  compressed.resize(compressedSize);

  std::vector<BYTE> header;
  AppendBigEndian(header, static_cast<std::uint32_t>(picture.width));
  AppendBigEndian(header, static_cast<std::uint32_t>(picture.height));
  header.insert(header.end(), {8, 2, 0, 0, 0});  // 8 bits, truecolour, deflate, no filter set, no interlace

  std::vector<BYTE> bytes = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  AppendPngChunk(bytes, "IHDR", header);
  AppendPngChunk(bytes, "IDAT", compressed);
  AppendPngChunk(bytes, "IEND", {});
  return WriteFile(bytes, path);
}

bool WritePictureFile(const DibPicture& picture, const std::string& path) {
  const std::string_view png = ".png";
  const bool isPng =
      path.size() >= png.size() && path.compare(path.size() - png.size(), png.size(), png) == 0;
  return isPng ? WritePngFile(picture, path) : WriteBmpFile(picture, path);
}

}  // namespace script
