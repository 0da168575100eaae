// A host that records the message boxes the image files show.
#pragma once

#include <string>
#include <vector>

#include "platform/host.h"
#include "platform/user.h"

namespace imageio_test {

class MessageRecorder : public platform::Host {
 public:
  struct Message {
    std::string text;
    std::string caption;
    UINT type;
  };
  std::vector<Message> messages;
  int ShowMessageBox(const std::string& text, const std::string& caption, UINT type) override {
    messages.push_back({text, caption, type});
    return IDOK;
  }
};

}  // namespace imageio_test
