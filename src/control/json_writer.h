// A small streaming JSON writer for the one-line state report (state_json.h): it
// places commas and colons itself, escapes strings, and prints numbers
// deterministically (doubles in their shortest form that reads back to the same value).
#pragma once

#include <string>
#include <string_view>
#include <vector>

class JsonWriter {
 public:
  JsonWriter& BeginObject();
  JsonWriter& EndObject();
  JsonWriter& BeginArray();
  JsonWriter& EndArray();
  // The name of the next member of the enclosing object.
  JsonWriter& Key(std::string_view name);
  JsonWriter& Value(int value);
  JsonWriter& Value(bool value);
  // Non-finite values have no JSON form and are written as null.
  JsonWriter& Value(double value);
  JsonWriter& Value(std::string_view text);
  JsonWriter& Value(const char* text) { return Value(std::string_view(text)); }

  const std::string& str() const { return text_; }

 private:
  // Writes the comma that separates this value from the previous one in its container.
  void BeforeValue();
  void Open(char bracket);
  void Close(char bracket);

  std::string text_;
  // One entry per open container: true until its first element is written.
  std::vector<bool> firstInContainer_;
  bool afterKey_ = false;
};
