#include "control/json_writer.h"

#include <charconv>
#include <cmath>

void JsonWriter::BeforeValue() {
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (!firstInContainer_.empty()) {
    if (!firstInContainer_.back()) text_ += ',';
    firstInContainer_.back() = false;
  }
}

void JsonWriter::Open(char bracket) {
  BeforeValue();
  text_ += bracket;
  firstInContainer_.push_back(true);
}

void JsonWriter::Close(char bracket) {
  if (!firstInContainer_.empty()) firstInContainer_.pop_back();
  text_ += bracket;
}

JsonWriter& JsonWriter::BeginObject() {
  Open('{');
  return *this;
}
JsonWriter& JsonWriter::EndObject() {
  Close('}');
  return *this;
}
JsonWriter& JsonWriter::BeginArray() {
  Open('[');
  return *this;
}
JsonWriter& JsonWriter::EndArray() {
  Close(']');
  return *this;
}

JsonWriter& JsonWriter::Key(std::string_view name) {
  Value(name);
  text_ += ':';
  afterKey_ = true;
  return *this;
}

JsonWriter& JsonWriter::Value(int value) {
  BeforeValue();
  text_ += std::to_string(value);
  return *this;
}

JsonWriter& JsonWriter::Value(bool value) {
  BeforeValue();
  text_ += value ? "true" : "false";
  return *this;
}

JsonWriter& JsonWriter::Value(double value) {
  BeforeValue();
  if (!std::isfinite(value)) {
    text_ += "null";
    return *this;
  }
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  text_.append(buffer, result.ptr);
  return *this;
}

JsonWriter& JsonWriter::Value(std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  BeforeValue();
  text_ += '"';
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      text_ += '\\';
      text_ += c;
    } else if (c == '\n') {
      text_ += "\\n";
    } else if (byte < 0x20) {
      text_ += "\\u00";
      text_ += kHex[byte >> 4];
      text_ += kHex[byte & 0xF];
    } else {
      text_ += c;
    }
  }
  text_ += '"';
  return *this;
}
