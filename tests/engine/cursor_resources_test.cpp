// The twenty cursor pictures as the module registers them, and the picture file parser.
#include <gtest/gtest.h>

#include <string>

#include "platform/platform.h"
#include "resources/cursor_file.h"
#include "resources/cursor_table.h"
#include "resources/module_resources.h"

namespace {

TEST(CursorResources, EveryCursorHasAPictureWithItsHotSpotOnTheDrawing) {
  RegisterModuleResources();
  for (const CursorResource& cursor : kCursorTable) {
    platform::CursorArtwork artwork;
    ASSERT_TRUE(platform::GetCursorArtwork(cursor.resourceId, &artwork)) << cursor.resourceId;
    EXPECT_EQ(artwork.width, 32);
    EXPECT_EQ(artwork.height, 32);
    ASSERT_EQ(artwork.pixels.size(), 32u * 32u);
    EXPECT_EQ(artwork.hotSpot.x, cursor.hotX) << cursor.resourceId;
    EXPECT_EQ(artwork.hotSpot.y, cursor.hotY) << cursor.resourceId;
    // The point that acts must be drawn, or touch a drawn pixel.
    bool drawnNear = false;
    for (int y = cursor.hotY - 1; y <= cursor.hotY + 1; ++y) {
      for (int x = cursor.hotX - 1; x <= cursor.hotX + 1; ++x) {
        if (x >= 0 && x < 32 && y >= 0 && y < 32 && (artwork.pixels[y * 32 + x] >> 24) != 0) drawnNear = true;
      }
    }
    EXPECT_TRUE(drawnNear) << cursor.resourceId;
  }
  EXPECT_FALSE(platform::GetCursorArtwork(200, nullptr));
}

TEST(CursorResources, TheParserRefusesMalformedFiles) {
  const std::string row(32, '.');
  std::string rows;
  for (int i = 0; i < 32; ++i) rows += row + "\n";
  const std::string good = "cursor 7 hotspot 31 0\n" + rows;
  const resources::CursorFile parsed = resources::ParseCursorFile(good);
  ASSERT_EQ(parsed.error, nullptr);
  EXPECT_EQ(parsed.header.id, 7);
  EXPECT_EQ(parsed.header.hotX, 31);
  EXPECT_EQ(resources::ParseCursorFile(good.substr(0, good.size() - 1)).error, nullptr);  // no last newline
  std::string crlf = "cursor 7 hotspot 3 2\r\n";
  for (int i = 0; i < 32; ++i) crlf += row + "\r\n";
  EXPECT_EQ(resources::ParseCursorFile(crlf).error, nullptr);

  const std::string bad[] = {
      "",
      rows,                              // no header
      "cursor 7 hotspot 32 0\n" + rows,  // hot spot outside the picture
      "cursor 7 hotspot -1 0\n" + rows,
      "cursor 0 hotspot 1 1\n" + rows,  // no id
      "cursor 7 hotspot 1\n" + rows,
      "cursor  7 hotspot 1 1\n" + rows,
      "cursor 7 hotspot 1 1 \n" + rows,
      "cursor 7 hotspot 1 1\n" + rows.substr(33),  // 31 rows
      good + row + "\n",                           // 33 rows
      good + "\n",                                 // a blank line after the picture
      "cursor 7 hotspot 1 1\n" + row.substr(1) + "\n" + rows.substr(33),
      "cursor 7 hotspot 1 1\n" + row + ".\n" + rows.substr(33),
      "cursor 7 hotspot 1 1\n" + row.substr(1) + "Z\n" + rows.substr(33),  // not in the palette
  };
  for (const std::string& text : bad) {
    EXPECT_NE(resources::ParseCursorFile(text).error, nullptr) << text.substr(0, 40);
  }
}

}  // namespace
