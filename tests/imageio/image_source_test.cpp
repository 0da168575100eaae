#include "imageio/image_source.h"

#include <gtest/gtest.h>

namespace {

using imageio::ParseUrl;
using imageio::UrlService;

TEST(ImageSource, UrlsAreRecognisedWithTheirService) {
  UrlService service{};
  EXPECT_TRUE(ParseUrl("http://example.com/a.jpg", &service));
  EXPECT_EQ(service, UrlService::Http);
  EXPECT_TRUE(ParseUrl("HTTPS://example.com", &service));
  EXPECT_EQ(service, UrlService::Https);
  EXPECT_TRUE(ParseUrl("ftp://host/x", &service));
  EXPECT_EQ(service, UrlService::Ftp);
  EXPECT_TRUE(ParseUrl("file:///tmp/a.bmp", &service));
  EXPECT_EQ(static_cast<std::uint32_t>(service), 0x1001u);
}

TEST(ImageSource, PathsAndUnparsableTextAreNotUrls) {
  UrlService service = UrlService::Ftp;
  for (const char* text : {"", "/tmp/a.jpg", "C:\\pictures\\a.jpg", "a.jpg", "http:/x", "http://",
                           "http:///x", "mailto://someone", "://host/x"}) {
    EXPECT_FALSE(ParseUrl(text, &service)) << text;
  }
  EXPECT_EQ(service, UrlService::Ftp);
}

}  // namespace
