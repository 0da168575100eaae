// Run-length compressed DIBs through SetDIBits, against what Windows' GDI made of the
// same files (tests/data/rle).
#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "platform/gdi_test_support.h"
#include "support/run_length_fixtures.h"

using gdi_test::MemSurface;
using rle_fixtures::kFill;
using rle_fixtures::kHeight;
using rle_fixtures::kWidth;

namespace {

// A compressed file's header and colour table (kept aligned as a BITMAPINFO must be)
// and its codes, each in storage of exactly their size so that a read past them is
// caught.
struct CompressedDib {
  explicit CompressedDib(const std::vector<std::uint8_t>& file) {
    std::uint32_t offset = 0;
    std::memcpy(&offset, file.data() + 10, 4);
    info.resize((offset - 14 + 3) / 4);
    std::memcpy(info.data(), file.data() + 14, offset - 14);
    codes.assign(file.begin() + offset, file.end());
  }
  BITMAPINFO* Info() { return reinterpret_cast<BITMAPINFO*>(info.data()); }
  BITMAPINFOHEADER& Header() { return Info()->bmiHeader; }
  int Set(const MemSurface& s, UINT start = 0, UINT lines = kHeight) {
    return SetDIBits(s.dc(), s.bitmap(), start, lines, codes.data(), Info(), DIB_RGB_COLORS);
  }
  // What SetDIBits answers for a bitmap of kFill, and the pixels it leaves there.
  std::pair<int, std::vector<COLORREF>> Decode(UINT start = 0, UINT lines = kHeight) {
    MemSurface s(kWidth, kHeight);
    s.Fill(kFill);
    const int answer = Set(s, start, lines);
    return {answer, s.Pixels()};
  }

  std::vector<DWORD> info;
  std::vector<BYTE> codes;
};

// Encoded and absolute runs (odd lengths with their padding, odd columns at 4 bits),
// deltas, ends of line and picture, data that stop early or are cut short, runs and
// deltas past the edges, and a declared size shorter than the codes.
TEST(GdiDibRunLength, EveryKindOfCodeSetsWhatGdiSets) {
  for (const std::string& name : rle_fixtures::Names()) {
    SCOPED_TRACE(name);
    CompressedDib dib(rle_fixtures::File(name));
    EXPECT_EQ(dib.Decode(), std::make_pair(kHeight, rle_fixtures::Expected(name, "filled")));
  }
}

// What GDI answered (through Wine) for the lines asked for and for headers it refuses.
TEST(GdiDibRunLength, TheWholePictureIsSetWhateverLinesAreAskedForUnlessGdiRefusesIt) {
  const std::vector<COLORREF> expected = rle_fixtures::Expected("rle8_codes", "filled");
  const std::vector<COLORREF> untouched(kWidth * kHeight, kFill);
  EXPECT_EQ(CompressedDib(rle_fixtures::File("rle8_codes")).Decode(5, 1), std::make_pair(kHeight, expected));
  struct Refused {
    const char* what;
    void (*change)(BITMAPINFOHEADER&);
    UINT lines = kHeight;
  };
  const Refused refused[] = {
      {"no lines asked for", [](BITMAPINFOHEADER&) {}, 0},
      {"top-down", [](BITMAPINFOHEADER& h) { h.biHeight = -h.biHeight; }},
      {"image size 0", [](BITMAPINFOHEADER& h) { h.biSizeImage = 0; }},
      {"BI_RLE8 at 4 bits", [](BITMAPINFOHEADER& h) { h.biBitCount = 4; }},
      {"BI_RLE4 at 8 bits", [](BITMAPINFOHEADER& h) { h.biCompression = BI_RLE4; }},
  };
  for (const Refused& r : refused) {
    SCOPED_TRACE(r.what);
    CompressedDib dib(rle_fixtures::File("rle8_codes"));
    r.change(dib.Header());
    EXPECT_EQ(dib.Decode(0, r.lines), std::make_pair(0, untouched));
  }
}

// Codes cut anywhere, even inside a code, read nothing past their end and set a part
// of what the whole codes set: never another colour, never a pixel they leave alone.
TEST(GdiDibRunLength, CodesCutAnywhereSetPartOfWhatTheWholeCodesSet) {
  for (const std::string& name : rle_fixtures::Names()) {
    const CompressedDib whole(rle_fixtures::File(name));
    CompressedDib sized = whole;
    sized.Header().biSizeImage = static_cast<DWORD>(sized.codes.size());
    const std::vector<COLORREF> full = sized.Decode().second;
    for (std::size_t size = 1; size < whole.codes.size(); ++size) {
      SCOPED_TRACE(testing::Message() << name << " cut to " << size);
      CompressedDib dib = whole;
      dib.codes.resize(size);
      dib.codes.shrink_to_fit();
      dib.Header().biSizeImage = static_cast<DWORD>(size);
      const auto [answer, cut] = dib.Decode();
      ASSERT_EQ(answer, kHeight);
      for (std::size_t i = 0; i < cut.size(); ++i) {
        if (cut[i] != kFill) {
          ASSERT_EQ(cut[i], full[i]) << "pixel " << i;
        }
      }
    }
  }
}

// A bitmap smaller than the picture takes its top left part (as GDI did through Wine)
// and nothing is written outside it; a monochrome one takes the nearest of black and
// white.
TEST(GdiDibRunLength, SmallerAndMonochromeTargetsTakeWhatFits) {
  const std::vector<COLORREF> expected = rle_fixtures::Expected("rle8_codes", "filled");
  CompressedDib dib(rle_fixtures::File("rle8_codes"));
  MemSurface small(5, 6);
  small.Fill(kFill);
  EXPECT_EQ(dib.Set(small), kHeight);
  for (int y = 0; y < 6; ++y) {
    EXPECT_EQ(small.Row(y, 5),
              std::vector<COLORREF>(expected.begin() + y * kWidth, expected.begin() + y * kWidth + 5))
        << "row " << y;
  }

  MemSurface mono(kWidth, kHeight, true);
  mono.Fill(gdi_test::kBlack);
  EXPECT_EQ(dib.Set(mono), kHeight);
  const std::vector<COLORREF> pixels = mono.Pixels();
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const COLORREF c = expected[i] == kFill ? gdi_test::kBlack : expected[i];
    const bool light = GetRValue(c) + GetGValue(c) + GetBValue(c) > 382;
    EXPECT_EQ(pixels[i], light ? gdi_test::kWhite : gdi_test::kBlack) << "pixel " << i;
  }
}

}  // namespace
