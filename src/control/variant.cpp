#include "control/variant.h"

#include <utility>

Variant Variant::Null() {
  Variant v;
  v.value_ = NullTag{};
  return v;
}

Variant Variant::Int(std::int32_t value) {
  Variant v;
  v.value_ = value;
  return v;
}

Variant Variant::Bool(bool value) {
  Variant v;
  v.value_ = value;
  return v;
}

Variant Variant::String(std::string value) {
  Variant v;
  v.value_ = std::move(value);
  return v;
}

Variant::Type Variant::type() const {
  // The alternatives are declared in the order of Type.
  return static_cast<Type>(value_.index());
}

std::int32_t Variant::asInt() const {
  if (const bool* flag = std::get_if<bool>(&value_)) return *flag ? 1 : 0;
  return std::get<std::int32_t>(value_);  // any other type throws std::bad_variant_access
}

const std::string& Variant::asString() const { return std::get<std::string>(value_); }
