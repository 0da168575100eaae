#include "imageio/image_source.h"

#include <gtest/gtest.h>

namespace {

using imageio::ParseUrl;
using imageio::UrlService;

TEST(ImageSource, UrlsAreRecognisedWithTheirServiceAndPathsAreNot) {
  for (const auto& [text, expected] :
       {std::pair{"http://example.com/a.jpg", UrlService::Http},
        std::pair{"HTTPS://example.com", UrlService::Https}, std::pair{"ftp://host/x", UrlService::Ftp},
        std::pair{"file:///tmp/a.bmp", UrlService::File}}) {
    UrlService service{};
    EXPECT_TRUE(ParseUrl(text, &service)) << text;
    EXPECT_EQ(service, expected) << text;
  }
  UrlService service = UrlService::Ftp;
  for (const char* text : {"", "/tmp/a.jpg", "C:\\pictures\\a.jpg", "a.jpg", "http:/x", "http://",
                           "http:///x", "mailto://someone", "://host/x"}) {
    EXPECT_FALSE(ParseUrl(text, &service)) << text;
  }
  EXPECT_EQ(service, UrlService::Ftp);
}

}  // namespace
