#include "imageio/image_source.h"

#include <gtest/gtest.h>

namespace {

using imageio::ParseUrl;
using imageio::UrlService;

// The loader downloads every URL but a file URL, which names a file as it stands.
TEST(ImageSource, UrlsAreRecognisedAndFileUrlsToldApart) {
  UrlService service{};
  for (const char* url : {"http://example.com/a.jpg", "HTTPS://example.com", "ftp://host/x"}) {
    EXPECT_TRUE(ParseUrl(url, &service)) << url;
    EXPECT_NE(service, UrlService::File) << url;
  }
  EXPECT_TRUE(ParseUrl("file:///tmp/a.bmp", &service));
  EXPECT_EQ(service, UrlService::File);
  for (const char* text : {"", "/tmp/a.jpg", "C:\\pictures\\a.jpg", "a.jpg", "http:/x", "http://",
                           "http:///x", "mailto://someone", "://host/x"}) {
    EXPECT_FALSE(ParseUrl(text, &service)) << text;
  }
}

}  // namespace
