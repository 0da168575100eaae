#include "control/module/property_exchange.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <utility>

namespace {

constexpr int kPixelsPerInch = 96;
constexpr int kHimetricPerInch = 2540;
// Stock properties (colours, font, caption) the control persists: none.
constexpr std::int32_t kStockProperties = 0;

constexpr char16_t kVersionName[] = u"_Version";
constexpr char16_t kExtentXName[] = u"_ExtentX";
constexpr char16_t kExtentYName[] = u"_ExtentY";
constexpr char16_t kStockPropertiesName[] = u"_StockProps";

ocx::INT Himetric(int pixels) {
  const std::int64_t scaled = static_cast<std::int64_t>(pixels) * kHimetricPerInch;
  return static_cast<ocx::INT>((scaled + kPixelsPerInch / 2) / kPixelsPerInch);
}

ocx::HRESULT WriteInteger(ocx::IPropertyBag& bag, const char16_t* name, std::int32_t value) {
  ocx::VARIANT variant;
  ocx::VariantInit(&variant);
  variant.vt = ocx::VT_I4;
  variant.lVal = value;
  return bag.Write(name, &variant);
}

// A decimal integer written as text, as a page's parameters come: an optional sign
// and digits only, within 32 bits; nullopt for anything else.
std::optional<std::int32_t> DecimalText(const ocx::OLECHAR* text, ocx::UINT length) {
  ocx::UINT i = 0;
  const bool negative = length > 0 && text[0] == u'-';
  if (length > 0 && (text[0] == u'-' || text[0] == u'+')) ++i;
  if (i == length) return std::nullopt;
  std::int64_t magnitude = 0;
  for (; i < length; ++i) {
    if (text[i] < u'0' || text[i] > u'9') return std::nullopt;
    magnitude = magnitude * 10 + (text[i] - u'0');
    if (magnitude > 2147483648LL) return std::nullopt;
  }
  const std::int64_t value = negative ? -magnitude : magnitude;
  if (value > 2147483647LL) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

// One integer of the bag: nullopt in *value when the bag has none, DISP_E_TYPEMISMATCH
// when what it has is neither an integer nor one written as text.
ocx::HRESULT ReadInteger(ocx::IPropertyBag& bag, const char16_t* name, std::optional<std::int32_t>* value) {
  ocx::VARIANT variant;
  ocx::VariantInit(&variant);
  variant.vt = ocx::VT_I4;
  *value = std::nullopt;
  // A bag that fails owns nothing it may have put in the variant.
  if (ocx::FAILED(bag.Read(name, &variant, nullptr))) return ocx::S_OK;
  ocx::HRESULT hr = ocx::S_OK;
  switch (variant.vt) {
    case ocx::VT_I4:
      *value = variant.lVal;
      break;
    case ocx::VT_INT:
      *value = variant.intVal;
      break;
    case ocx::VT_I2:
      *value = variant.iVal;
      break;
    case ocx::VT_UI1:
      *value = variant.bVal;
      break;
    case ocx::VT_BSTR:
      *value = DecimalText(variant.bstrVal, ocx::SysStringLen(variant.bstrVal));
      if (!*value) hr = ocx::DISP_E_TYPEMISMATCH;
      break;
    default:
      hr = ocx::DISP_E_TYPEMISMATCH;
  }
  ocx::VariantClear(&variant);
  return hr;
}

}  // namespace

ControlExtent ExtentFromPixels(int width, int height) { return {Himetric(width), Himetric(height)}; }

ocx::HRESULT SaveProperties(ocx::IPropertyBag& bag, const ControlExtent& extent) {
  for (const auto& [name, value] : {std::pair{kVersionName, static_cast<std::int32_t>(kControlVersion)},
                                    std::pair{kExtentXName, extent.cx}, std::pair{kExtentYName, extent.cy},
                                    std::pair{kStockPropertiesName, kStockProperties}}) {
    const ocx::HRESULT hr = WriteInteger(bag, name, value);
    if (ocx::FAILED(hr)) return hr;
  }
  return ocx::S_OK;
}

ocx::HRESULT LoadProperties(ocx::IPropertyBag& bag, ControlExtent* extent) {
  std::optional<std::int32_t> version, cx, cy;
  ocx::HRESULT hr = ReadInteger(bag, kVersionName, &version);
  if (ocx::FAILED(hr)) return hr;
  const auto major = [](std::uint32_t v) { return v >> 16; };
  if (version && major(static_cast<std::uint32_t>(*version)) > major(kControlVersion)) {
    return ocx::STG_E_OLDDLL;
  }
  if (ocx::FAILED(hr = ReadInteger(bag, kExtentXName, &cx))) return hr;
  if (ocx::FAILED(hr = ReadInteger(bag, kExtentYName, &cy))) return hr;
  const ControlExtent loaded{cx.value_or(extent->cx), cy.value_or(extent->cy)};
  if (loaded.cx < 0 || loaded.cy < 0) return ocx::E_INVALIDARG;
  *extent = loaded;
  return ocx::S_OK;
}
