// Draws every case of tests/data/gdi/draw/*.txt (command lists for the GDI oracle, with
// the picture the oracle drew after each `save`) with our GDI and compares pixel for
// pixel. A case preceded by "# tolerance N near: REASON" may differ in at most N pixels,
// all on a stroke's edge: each must have its oracle colour next to it in our picture and
// our colour next to it in the oracle's.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "platform/gdi_draw.h"
#include "platform/gdi_test_support.h"

namespace {

struct Picture {
  int width = 0;
  int height = 0;
  std::vector<COLORREF> pixels;
  COLORREF At(int x, int y) const { return pixels[static_cast<std::size_t>(y) * width + x]; }
  // Whether `color` is at (x, y) or one of its eight neighbours.
  bool Near(int x, int y, COLORREF color) const {
    for (int j = std::max(0, y - 1); j <= std::min(height - 1, y + 1); ++j) {
      for (int i = std::max(0, x - 1); i <= std::min(width - 1, x + 1); ++i) {
        if (At(i, j) == color) return true;
      }
    }
    return false;
  }
};

struct Case {
  std::string name;
  std::string file;
  std::vector<std::string> commands;  // from the file's start: pens and brushes carry over
  Picture expected;
  int edgePixelsAllowed = 0;
};

COLORREF ColorFromHex(const std::string& text) {
  const unsigned long v = std::stoul(text, nullptr, 16);
  return RGB((v >> 16) & 0xFF, (v >> 8) & 0xFF, v & 0xFF);
}

// Runs oracle commands on one memory DC, as the oracle does: `size` swaps in a new white
// bitmap and keeps the pen, brush and ROP2.
class OracleCommands {
 public:
  OracleCommands() : dc_(CreateCompatibleDC(nullptr)) {}
  ~OracleCommands() {
    SelectObject(dc_, GetStockObject(BLACK_PEN));
    SelectObject(dc_, GetStockObject(WHITE_BRUSH));
    if (pen_) DeleteObject(pen_);
    if (brush_) DeleteObject(brush_);
    NewBitmap(1, 1);
    DeleteDC(dc_);
    DeleteObject(bitmap_);
  }

  void Run(const std::string& line) {
    std::istringstream in(line);
    std::string command, text;
    in >> command;
    int a[8] = {};
    if (command == "size") {
      in >> a[0] >> a[1];
      NewBitmap(a[0], a[1]);
    } else if (command == "fill") {
      in >> text;
      HBRUSH brush = CreateSolidBrush(ColorFromHex(text));
      const RECT all{0, 0, width_, height_};
      FillRect(dc_, &all, brush);
      DeleteObject(brush);
    } else if (command == "pen") {
      in >> text >> a[0];
      std::string color;
      in >> color;
      const LOGBRUSH solid{BS_SOLID, ColorFromHex(color), 0};
      DWORD style = PS_COSMETIC | PS_SOLID;
      DWORD width = 1;
      if (text == "dot") style = PS_COSMETIC | PS_DOT;
      if (text == "square") style = PS_GEOMETRIC | PS_ENDCAP_SQUARE;
      if (text == "round") style = PS_GEOMETRIC;
      if (text == "square" || text == "round") width = static_cast<DWORD>(a[0]);
      Replace(pen_, ExtCreatePen(style, width, &solid, 0, nullptr));
    } else if (command == "brush") {
      in >> text;
      if (text == "null") {
        SelectObject(dc_, GetStockObject(NULL_BRUSH));
      } else {
        Replace(brush_, CreateSolidBrush(ColorFromHex(text)));
      }
    } else if (command == "rop2") {
      in >> a[0];
      SetROP2(dc_, a[0]);
    } else if (command == "moveto" || command == "lineto") {
      in >> a[0] >> a[1];
      command == "moveto" ? MoveToEx(dc_, a[0], a[1], nullptr) : LineTo(dc_, a[0], a[1]);
    } else if (command == "rect" || command == "ellipse") {
      in >> a[0] >> a[1] >> a[2] >> a[3];
      command == "rect" ? Rectangle(dc_, a[0], a[1], a[2], a[3]) : Ellipse(dc_, a[0], a[1], a[2], a[3]);
    } else if (command == "bezier") {
      POINT points[4];
      for (POINT& p : points) in >> p.x >> p.y;
      PolyBezier(dc_, points, 4);
    } else if (command == "floodfill" || command == "setpixel") {
      in >> a[0] >> a[1] >> text;
      command == "floodfill" ? ExtFloodFill(dc_, a[0], a[1], ColorFromHex(text), FLOODFILLSURFACE)
                             : SetPixel(dc_, a[0], a[1], ColorFromHex(text));
    } else if (command != "save") {
      ADD_FAILURE() << "unknown oracle command: " << line;
    }
  }

  Picture Snapshot() const {
    Picture picture{width_, height_, {}};
    for (int y = 0; y < height_; ++y) {
      for (int x = 0; x < width_; ++x) picture.pixels.push_back(GetPixel(dc_, x, y));
    }
    return picture;
  }

 private:
  template <typename Handle>
  void Replace(Handle& held, Handle fresh) {
    ASSERT_NE(fresh, nullptr);
    SelectObject(dc_, fresh);
    if (held) DeleteObject(held);
    held = fresh;
  }
  void NewBitmap(int width, int height) {
    HBITMAP fresh = CreateBitmap(width, height, 1, 32, nullptr);
    SelectObject(dc_, fresh);
    if (bitmap_) DeleteObject(bitmap_);
    bitmap_ = fresh;
    width_ = width;
    height_ = height;
    const RECT all{0, 0, width, height};
    FillRect(dc_, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  }

  HDC dc_;
  HBITMAP bitmap_ = nullptr;
  HPEN pen_ = nullptr;
  HBRUSH brush_ = nullptr;
  int width_ = 0;
  int height_ = 0;
};

// "# expect .=FFFFFF R=FF0000" followed by "# |row|" lines.
Picture ParseExpected(const std::vector<std::string>& lines, std::size_t* index) {
  Picture picture;
  std::map<char, COLORREF> legend;
  std::istringstream in(lines[*index].substr(std::string("# expect ").size()));
  std::string entry;
  while (in >> entry) legend[entry[0]] = ColorFromHex(entry.substr(2));
  while (*index + 1 < lines.size() && lines[*index + 1].rfind("# |", 0) == 0) {
    const std::string& line = lines[++*index];
    const std::string row = line.substr(3, line.size() - 4);
    picture.width = static_cast<int>(row.size());
    for (char c : row) picture.pixels.push_back(legend.at(c));
    ++picture.height;
  }
  return picture;
}

std::vector<Case> LoadCases() {
  std::vector<Case> cases;
  const std::filesystem::path folder = std::filesystem::path(IE_TEST_DATA) / "gdi" / "draw";
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".txt") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const auto& path : files) {
    std::ifstream in(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    std::vector<std::string> commands;
    int allowed = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const std::string& line = lines[i];
      if (line.rfind("# tolerance ", 0) == 0) allowed = std::stoi(line.substr(12));
      if (line.empty() || line[0] == '#') continue;
      commands.push_back(line);
      if (line.rfind("save ", 0) == 0 && i + 1 < lines.size() && lines[i + 1].rfind("# expect ", 0) == 0) {
        ++i;
        cases.push_back(
            {line.substr(5), path.filename().string(), commands, ParseExpected(lines, &i), allowed});
        allowed = 0;
      }
    }
  }
  return cases;
}

class GdiDrawOracle : public ::testing::TestWithParam<Case> {};

TEST_P(GdiDrawOracle, MatchesTheOraclesPicture) {
  const Case& c = GetParam();
  const auto before = platform::LiveGdiObjects();
  Picture ours;
  {
    OracleCommands runner;
    for (const std::string& command : c.commands) runner.Run(command);
    ours = runner.Snapshot();
  }
  EXPECT_EQ(platform::LiveGdiObjects().total(), before.total());
  ASSERT_EQ(ours.width, c.expected.width);
  ASSERT_EQ(ours.height, c.expected.height);
  int onEdge = 0;
  std::ostringstream elsewhere;
  for (int y = 0; y < ours.height; ++y) {
    for (int x = 0; x < ours.width; ++x) {
      const COLORREF mine = ours.At(x, y);
      const COLORREF theirs = c.expected.At(x, y);
      if (mine == theirs) continue;
      if (c.edgePixelsAllowed > 0 && c.expected.Near(x, y, mine) && ours.Near(x, y, theirs)) {
        ++onEdge;
      } else {
        elsewhere << " (" << x << "," << y << ")";
      }
    }
  }
  EXPECT_EQ(elsewhere.str(), "") << c.file << " " << c.name << ": pixels that differ";
  EXPECT_LE(onEdge, c.edgePixelsAllowed) << c.file << " " << c.name << ": pixels that differ on an edge";
}

// Names the case in failure messages instead of dumping its bytes.
void PrintTo(const Case& c, std::ostream* out) { *out << c.file << ":" << c.name; }

INSTANTIATE_TEST_SUITE_P(Fixtures, GdiDrawOracle, ::testing::ValuesIn(LoadCases()),
                         [](const ::testing::TestParamInfo<Case>& param) {
                           std::string name = param.param.name.substr(0, param.param.name.find('.'));
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

}  // namespace
