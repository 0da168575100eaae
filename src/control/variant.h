// The argument and result values of dispatch calls: what an automation host passes.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

class Variant {
 public:
  enum class Type { Empty, Null, Int, Bool, String };

  Variant() = default;
  static Variant Null();
  static Variant Int(std::int32_t value);
  static Variant Bool(bool value);
  static Variant String(std::string value);

  Type type() const;
  bool isEmpty() const { return type() == Type::Empty; }
  bool isNull() const { return type() == Type::Null; }
  // Int, or Bool as 1/0; any other type throws std::bad_variant_access.
  std::int32_t asInt() const;
  // String only; any other type throws std::bad_variant_access.
  const std::string& asString() const;

  friend bool operator==(const Variant&, const Variant&) = default;

 private:
  struct NullTag {
    friend bool operator==(NullTag, NullTag) { return true; }
  };
  std::variant<std::monostate, NullTag, std::int32_t, bool, std::string> value_;
};
