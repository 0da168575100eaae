// The binary interface of the control module, libOstrelImageEditCtrl.so: what a host
// that loads the module with dlopen sees, and the only thing both sides share. It is
// the component object model's shape: interfaces are tables of functions reached
// through a pointer to the object, found by interface identifier with QueryInterface
// and kept alive by reference counts; a class factory, got from DllGetClassObject by
// class identifier, makes the objects.
//
// The interfaces are C++ classes with pure virtual functions only, no data and no
// virtual destructor, so each has exactly one function table laid out in declaration
// order, the same on both sides of the boundary. Everything lives in namespace ocx so
// that a host may also include the engine's platform header, which declares some of
// the same Windows names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

// The platform library's window and bitmap handles (platform/types.h), which a host
// that links it passes to and from the module as they are.
struct HWND__;
struct HBITMAP__;

namespace ocx {

using HWND = ::HWND__*;
using HBITMAP = ::HBITMAP__*;
using HRESULT = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using WORD = std::uint16_t;
using UINT = unsigned int;
using INT = int;
using BOOL = int;
using LCID = std::uint32_t;
using DISPID = std::int32_t;
using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using OLECHAR = char16_t;
using LPOLESTR = OLECHAR*;
using BSTR = OLECHAR*;

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
  friend constexpr bool operator==(const GUID& a, const GUID& b) {
    for (int i = 0; i < 8; ++i) {
      if (a.Data4[i] != b.Data4[i]) return false;
    }
    return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3;
  }
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

// ---- results, with the values Windows gives them ----

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001u);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002u);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003u);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFFu);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110u);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = static_cast<HRESULT>(0x80040111u);
inline constexpr HRESULT DISP_E_UNKNOWNINTERFACE = static_cast<HRESULT>(0x80020001u);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = static_cast<HRESULT>(0x80020003u);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = static_cast<HRESULT>(0x80020005u);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = static_cast<HRESULT>(0x80020006u);
inline constexpr HRESULT DISP_E_NONAMEDARGS = static_cast<HRESULT>(0x80020007u);
inline constexpr HRESULT DISP_E_BADINDEX = static_cast<HRESULT>(0x8002000Bu);
inline constexpr HRESULT DISP_E_BADPARAMCOUNT = static_cast<HRESULT>(0x8002000Eu);
inline constexpr HRESULT CONNECT_E_NOCONNECTION = static_cast<HRESULT>(0x80040200u);
inline constexpr HRESULT CONNECT_E_CANNOTCONNECT = static_cast<HRESULT>(0x80040202u);
inline constexpr HRESULT SELFREG_E_TYPELIB = static_cast<HRESULT>(0x80040200u);
inline constexpr HRESULT SELFREG_E_CLASS = static_cast<HRESULT>(0x80040201u);
inline constexpr HRESULT TYPE_E_ELEMENTNOTFOUND = static_cast<HRESULT>(0x8002802Bu);
inline constexpr HRESULT OLE_E_NOT_INPLACEACTIVE = static_cast<HRESULT>(0x80040010u);
inline constexpr HRESULT OLEOBJ_S_INVALIDVERB = static_cast<HRESULT>(0x00040180u);
// Saved data written by a newer version of the object than this one.
inline constexpr HRESULT STG_E_OLDDLL = static_cast<HRESULT>(0x80030105u);

inline constexpr bool SUCCEEDED(HRESULT hr) { return hr >= 0; }
inline constexpr bool FAILED(HRESULT hr) { return hr < 0; }

// ---- identifiers ----

// The interfaces every component of this model shares keep their well-known values.
inline constexpr IID IID_NULL = {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};
inline constexpr IID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IClassFactory = {0x00000001, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IDispatch = {0x00020400, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IConnectionPointContainer = {
    0xB196B284, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};
inline constexpr IID IID_IConnectionPoint = {
    0xB196B286, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};
inline constexpr IID IID_IObjectSafety = {
    0xCB5BDC81, 0x93C1, 0x11CF, {0x8F, 0x20, 0x00, 0x80, 0x5F, 0x2C, 0xD0, 0x64}};
inline constexpr IID IID_IEnumConnectionPoints = {
    0xB196B285, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};
inline constexpr IID IID_IEnumConnections = {
    0xB196B287, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};
inline constexpr IID IID_ISpecifyPropertyPages = {
    0xB196B28B, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};
inline constexpr IID IID_IPersist = {0x0000010C, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IPersistPropertyBag = {
    0x37D84F60, 0x42CB, 0x11CE, {0x81, 0x35, 0x00, 0xAA, 0x00, 0x4B, 0xB8, 0x51}};
inline constexpr IID IID_IPropertyBag = {
    0x55272A00, 0x42CB, 0x11CE, {0x81, 0x35, 0x00, 0xAA, 0x00, 0x4B, 0xB8, 0x51}};

// The module's own identifiers, chosen once for this control and never to change:
// hosts and registrations name the control by them. The interface description
// (resources/image_edit_ctrl.odl) gives the library's, the interfaces' and the
// control's too, and the build stops when these differ from it.
// {711CF030-FF31-4266-915A-FF6469BAB025} the type library OSTRELIMAGEEDITCTRL 1.1
inline constexpr GUID LIBID_OSTRELIMAGEEDITCTRL = {
    0x711CF030, 0xFF31, 0x4266, {0x91, 0x5A, 0xFF, 0x64, 0x69, 0xBA, 0xB0, 0x25}};
// {204FAB7E-2001-4065-AF63-CE06594A96EF} the control, "Ostrel.ImageEditCtrl.1"
inline constexpr CLSID CLSID_ImageEditCtrl = {
    0x204FAB7E, 0x2001, 0x4065, {0xAF, 0x63, 0xCE, 0x06, 0x59, 0x4A, 0x96, 0xEF}};
// {22FEED03-B9E7-4E00-B6DC-03F5D7454DDD} the property page, "Ostrel.ImageEditCtrlPropPage.1"
inline constexpr CLSID CLSID_ImageEditCtrlPropPage = {
    0x22FEED03, 0xB9E7, 0x4E00, {0xB6, 0xDC, 0x03, 0xF5, 0xD7, 0x45, 0x4D, 0xDD}};
// {45792727-EF33-4343-BA7B-AD353896C787} the dispatch interface _DImageEditCtrl
inline constexpr IID DIID__DImageEditCtrl = {
    0x45792727, 0xEF33, 0x4343, {0xBA, 0x7B, 0xAD, 0x35, 0x38, 0x96, 0xC7, 0x87}};
// {0A72752C-7686-4D27-8BAA-ADF168CB5CF9} the event interface _DImageEditCtrlEvents
inline constexpr IID DIID__DImageEditCtrlEvents = {
    0x0A72752C, 0x7686, 0x4D27, {0x8B, 0xAA, 0xAD, 0xF1, 0x68, 0xCB, 0x5C, 0xF9}};
// {E4823CC3-5E20-4CDC-93C3-CAF854F64309} ITypeInfo (below), which has a shape of its own
inline constexpr IID IID_ITypeInfo = {
    0xE4823CC3, 0x5E20, 0x4CDC, {0x93, 0xC3, 0xCA, 0xF8, 0x54, 0xF6, 0x43, 0x09}};
// {C31A225B-7C79-48B5-8048-6FB14DB086EF} IImageEditWindow (below)
inline constexpr IID IID_IImageEditWindow = {
    0xC31A225B, 0x7C79, 0x48B5, {0x80, 0x48, 0x6F, 0xB1, 0x4D, 0xB0, 0x86, 0xEF}};
// {5F3C9A71-2E84-4B6D-9C0A-7D1E4B8F2A53} IImageEditInspection (below)
inline constexpr IID IID_IImageEditInspection = {
    0x5F3C9A71, 0x2E84, 0x4B6D, {0x9C, 0x0A, 0x7D, 0x1E, 0x4B, 0x8F, 0x2A, 0x53}};
// {6B0E2F4A-93D1-4C57-A2E8-1F7C5D3B9A64} IImageEditSite (below)
inline constexpr IID IID_IImageEditSite = {
    0x6B0E2F4A, 0x93D1, 0x4C57, {0xA2, 0xE8, 0x1F, 0x7C, 0x5D, 0x3B, 0x9A, 0x64}};
// {D3A85C1E-7B26-4F09-8E4D-5A2C61F0B7E3} IImageEditObject (below)
inline constexpr IID IID_IImageEditObject = {
    0xD3A85C1E, 0x7B26, 0x4F09, {0x8E, 0x4D, 0x5A, 0x2C, 0x61, 0xF0, 0xB7, 0xE3}};
// {90C4E7B2-18F3-4A6D-B5C0-3E9D27A4F816} IImageEditPropertyPage (below)
inline constexpr IID IID_IImageEditPropertyPage = {
    0x90C4E7B2, 0x18F3, 0x4A6D, {0xB5, 0xC0, 0x3E, 0x9D, 0x27, 0xA4, 0xF8, 0x16}};

// ---- strings ----

// A BSTR points at UTF-16 text that ends in a null character and is preceded by its
// length in bytes (32 bits). A null BSTR is the empty string to a method that reads
// it; a method's string result tells the two apart (null: "no value"). The module
// exports nothing but its four entry points, so both sides allocate and free strings
// with these inline functions, over the C runtime's allocator that they share.
inline BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
  auto* block =
      static_cast<std::uint32_t*>(std::malloc(sizeof(std::uint32_t) + (length + 1) * sizeof(OLECHAR)));
  if (block == nullptr) return nullptr;
  *block = static_cast<std::uint32_t>(length * sizeof(OLECHAR));
  BSTR bstr = reinterpret_cast<BSTR>(block + 1);
  if (text != nullptr) std::memcpy(bstr, text, length * sizeof(OLECHAR));
  bstr[length] = 0;
  return bstr;
}
inline BSTR SysAllocString(const OLECHAR* text) {
  if (text == nullptr) return nullptr;
  UINT length = 0;
  while (text[length] != 0) ++length;
  return SysAllocStringLen(text, length);
}
inline UINT SysStringLen(BSTR bstr) {
  return bstr == nullptr ? 0 : reinterpret_cast<const std::uint32_t*>(bstr)[-1] / sizeof(OLECHAR);
}
inline void SysFreeString(BSTR bstr) {
  if (bstr != nullptr) std::free(reinterpret_cast<std::uint32_t*>(bstr) - 1);
}

// Memory one side allocates and the other frees (a page list's identifiers): the C
// runtime's allocator again, standing in for the task allocator.
inline void* CoTaskMemAlloc(std::size_t size) { return std::malloc(size); }
inline void CoTaskMemFree(void* block) { std::free(block); }

// ---- variants ----

inline constexpr VARTYPE VT_EMPTY = 0;
inline constexpr VARTYPE VT_NULL = 1;
inline constexpr VARTYPE VT_I2 = 2;
inline constexpr VARTYPE VT_I4 = 3;
inline constexpr VARTYPE VT_BSTR = 8;
inline constexpr VARTYPE VT_BOOL = 11;
inline constexpr VARTYPE VT_VARIANT = 12;
inline constexpr VARTYPE VT_UI1 = 17;
inline constexpr VARTYPE VT_INT = 22;
inline constexpr VARTYPE VT_VOID = 24;  // a function's result when it has none
inline constexpr VARTYPE VT_BYREF = 0x4000;

inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

// The automation variant, laid out as on Windows: the type, three reserved words and
// a value the size of two pointers.
// A record's two pointers: the largest member of a variant, which gives it its size.
struct VariantRecord {
  void* pvRecord;
  void* pRecInfo;
};

struct VARIANT {
  VARTYPE vt;
  WORD wReserved1;
  WORD wReserved2;
  WORD wReserved3;
  union {
    std::int32_t lVal;
    INT intVal;
    std::int16_t iVal;
    std::uint8_t bVal;
    VARIANT_BOOL boolVal;
    BSTR bstrVal;
    VARIANT* pvarVal;
    VariantRecord brecVal;
  };
};
static_assert(sizeof(VARIANT) == 8 + 2 * sizeof(void*));
static_assert(offsetof(VARIANT, lVal) == 8);

// Sets *variant to empty.
inline void VariantInit(VARIANT* variant) { std::memset(variant, 0, sizeof(VARIANT)); }
// Frees what *variant owns (its string) and leaves it empty.
inline void VariantClear(VARIANT* variant) {
  if (variant->vt == VT_BSTR) SysFreeString(variant->bstrVal);
  VariantInit(variant);
}

// ---- interfaces ----

class IUnknown {
 public:
  virtual HRESULT QueryInterface(REFIID riid, void** object) = 0;
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;

 protected:
  ~IUnknown() = default;  // objects are destroyed by Release, never through an interface
};

class IClassFactory : public IUnknown {
 public:
  // Makes one object and returns its `riid` interface. Aggregation is not offered:
  // `outer` must be null.
  virtual HRESULT CreateInstance(IUnknown* outer, REFIID riid, void** object) = 0;
  // Locks the module in memory (TRUE) or releases one lock (FALSE).
  virtual HRESULT LockServer(BOOL lock) = 0;

 protected:
  ~IClassFactory() = default;
};

inline constexpr WORD DISPATCH_METHOD = 1;
inline constexpr DISPID DISPID_UNKNOWN = -1;

struct DISPPARAMS {
  VARIANT* rgvarg;  // the arguments, last one first
  DISPID* rgdispidNamedArgs;
  UINT cArgs;
  UINT cNamedArgs;
};

struct EXCEPINFO {
  WORD wCode;
  WORD wReserved;
  BSTR bstrSource;
  BSTR bstrDescription;
  BSTR bstrHelpFile;
  DWORD dwHelpContext;
  void* pvReserved;
  HRESULT (*pfnDeferredFillIn)(EXCEPINFO*);
  HRESULT scode;
};

inline constexpr DISPID MEMBERID_NIL = -1;  // the type itself, not one of its functions

inline constexpr WORD TYPEFLAG_FCANCREATE = 0x0002;
inline constexpr WORD TYPEFLAG_FHIDDEN = 0x0010;
inline constexpr WORD TYPEFLAG_FCONTROL = 0x0020;
inline constexpr WORD TYPEFLAG_FDISPATCHABLE = 0x1000;

// What a host learns of a dispatch interface from the control: its functions with
// their DISPIDs, names, parameter names and types and result types, as the type
// library describes them. It keeps the type information's familiar name and its
// GetNames, but is smaller than the system's: enough to list and call every method.
class ITypeInfo : public IUnknown {
 public:
  // The interface's identifier, its TYPEFLAG_ flags and how many functions it has.
  virtual HRESULT GetTypeAttr(IID* iid, WORD* typeFlags, UINT* functionCount) = 0;
  // Function `index` (0 to functionCount - 1, in the library's order): its DISPID,
  // its result type (VT_VOID for none) and how many parameters it takes.
  virtual HRESULT GetFuncDesc(UINT index, DISPID* dispid, VARTYPE* result, UINT* paramCount) = 0;
  // The type of parameter `param` of function `index`: VT_INT, VT_I4 or VT_BSTR.
  virtual HRESULT GetParamType(UINT index, UINT param, VARTYPE* type) = 0;
  // The function's name, then its parameters' names, at most maxNames of them;
  // *count says how many were given. The caller frees each.
  virtual HRESULT GetNames(DISPID dispid, BSTR* names, UINT maxNames, UINT* count) = 0;
  // The name and help string of a function, or of the interface for MEMBERID_NIL;
  // either out-parameter may be null. The caller frees them.
  virtual HRESULT GetDocumentation(DISPID dispid, BSTR* name, BSTR* docString) = 0;

 protected:
  ~ITypeInfo() = default;
};

class IDispatch : public IUnknown {
 public:
  virtual HRESULT GetTypeInfoCount(UINT* count) = 0;
  virtual HRESULT GetTypeInfo(UINT index, LCID locale, ITypeInfo** typeInfo) = 0;
  // names[0] is a method's name, any others the names of its parameters; each gets
  // its DISPID (a parameter's is its position) or DISPID_UNKNOWN.
  virtual HRESULT GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID locale, DISPID* dispids) = 0;
  // On DISP_E_TYPEMISMATCH, *argError is the index into params->rgvarg of the argument
  // that has the wrong type.
  virtual HRESULT Invoke(DISPID dispid, REFIID riid, LCID locale, WORD flags, DISPPARAMS* params,
                         VARIANT* result, EXCEPINFO* exception, UINT* argError) = 0;

 protected:
  ~IDispatch() = default;
};

class IConnectionPoint;
class IConnectionPointContainer;

struct CONNECTDATA {
  IUnknown* pUnk;  // the connected sink, with a reference the receiver releases
  DWORD dwCookie;
};

// An enumerator hands out a snapshot taken when it was made: connections made or
// broken later do not change what it yields. Next gives up to `count` items (each
// with a reference the caller releases) and answers S_FALSE when it gave fewer;
// `fetched` may be null only when count is 1. A clone starts where its original
// stands and moves on its own.
class IEnumConnections : public IUnknown {
 public:
  virtual HRESULT Next(ULONG count, CONNECTDATA* items, ULONG* fetched) = 0;
  virtual HRESULT Skip(ULONG count) = 0;
  virtual HRESULT Reset() = 0;
  virtual HRESULT Clone(IEnumConnections** copy) = 0;

 protected:
  ~IEnumConnections() = default;
};

class IEnumConnectionPoints : public IUnknown {
 public:
  virtual HRESULT Next(ULONG count, IConnectionPoint** items, ULONG* fetched) = 0;
  virtual HRESULT Skip(ULONG count) = 0;
  virtual HRESULT Reset() = 0;
  virtual HRESULT Clone(IEnumConnectionPoints** copy) = 0;

 protected:
  ~IEnumConnectionPoints() = default;
};

class IConnectionPoint : public IUnknown {
 public:
  virtual HRESULT GetConnectionInterface(IID* iid) = 0;
  virtual HRESULT GetConnectionPointContainer(IConnectionPointContainer** container) = 0;
  // Connects a sink (it must answer the event interface or IDispatch) and returns the
  // cookie that disconnects it.
  virtual HRESULT Advise(IUnknown* sink, DWORD* cookie) = 0;
  virtual HRESULT Unadvise(DWORD cookie) = 0;
  virtual HRESULT EnumConnections(IEnumConnections** connections) = 0;

 protected:
  ~IConnectionPoint() = default;
};

class IConnectionPointContainer : public IUnknown {
 public:
  virtual HRESULT EnumConnectionPoints(IEnumConnectionPoints** points) = 0;
  virtual HRESULT FindConnectionPoint(REFIID riid, IConnectionPoint** point) = 0;

 protected:
  ~IConnectionPointContainer() = default;
};

inline constexpr DWORD INTERFACESAFE_FOR_UNTRUSTED_CALLER = 1;
inline constexpr DWORD INTERFACESAFE_FOR_UNTRUSTED_DATA = 2;

class IObjectSafety : public IUnknown {
 public:
  virtual HRESULT GetInterfaceSafetyOptions(REFIID riid, DWORD* supported, DWORD* enabled) = 0;
  virtual HRESULT SetInterfaceSafetyOptions(REFIID riid, DWORD mask, DWORD enabled) = 0;

 protected:
  ~IObjectSafety() = default;
};

// The module's own interface for placing a control. The control makes the window it
// is placed in, of the size the host asks for, and gives the host either of two ways
// to reach it: a host that knows nothing but this header hands it mouse input here;
// a host that links the platform library the module links (libie_platform.so, the
// system's windows, input and clock) asks for the window and drives it as any
// window of the system, with keys, timers, scroll messages and pictures of it.
class IImageEditWindow : public IUnknown {
 public:
  // Activates the control in a host window of its own with a client area of width x
  // height (both at least 1): the control's window, then the editor's, whose methods
  // then come alive. E_UNEXPECTED when already active.
  virtual HRESULT Activate(INT width, INT height) = 0;
  // A mouse message (WM_MOUSEMOVE 0x200 to WM_MBUTTONDBLCLK 0x209) at a point of the
  // host window's client area. E_UNEXPECTED before Activate.
  virtual HRESULT MouseInput(UINT message, INT x, INT y) = 0;
  // The host window the control was activated in: the control's window is its one
  // child, the editor's window the control's. E_UNEXPECTED before Activate.
  virtual HRESULT GetWindow(HWND* hostWindow) = 0;

 protected:
  ~IImageEditWindow() = default;
};

// What the control shows of itself to a host that tests or records it: the editor's
// state and its surfaces, as the script host prints and writes them.
class IImageEditInspection : public IUnknown {
 public:
  // The editor's state as one line of JSON: every member when `keys` is null or
  // empty, else only those named (separated by spaces), in the state's own order.
  // DISP_E_UNKNOWNNAME when a key names no member, with *unknownKey its position
  // among the keys (the first is 0).
  virtual HRESULT GetState(const OLECHAR* keys, BSTR* json, UINT* unknownKey) = 0;
  // One of the editor's surfaces (INSPECTED_SURFACE), still owned by the control and
  // valid until the next call into it; null when the surface does not exist.
  virtual HRESULT GetSurface(INT surface, HBITMAP* bitmap) = 0;

 protected:
  ~IImageEditInspection() = default;
};

enum INSPECTED_SURFACE : INT {
  SURFACE_IMAGE = 0,
  SURFACE_DRAWING = 1,
  SURFACE_COMPOSITION = 2,
  SURFACE_SNAPSHOT = 3,
  SURFACE_ORIGINAL = 4
};

// ---- property pages and verbs ----

struct CAUUID {
  ULONG cElems;
  GUID* pElems;  // from CoTaskMemAlloc; the receiver frees it with CoTaskMemFree
};

// The property pages an object offers, by class identifier.
class ISpecifyPropertyPages : public IUnknown {
 public:
  virtual HRESULT GetPages(CAUUID* pages) = 0;

 protected:
  ~ISpecifyPropertyPages() = default;
};

// One control of a dialog as the host is asked to show it, in pixels of the dialog's
// client area.
enum DIALOGITEMKIND : INT {
  DIALOGITEM_ICON = 0,
  DIALOGITEM_TEXT = 1,
  DIALOGITEM_BUTTON = 2,
  DIALOGITEM_DEFBUTTON = 3
};
struct DIALOGITEM {
  INT id;  // -1 for a static item
  INT kind;
  const OLECHAR* text;  // an icon's is empty
  INT iconId;           // an icon's resource id, 0 otherwise
  INT left, top, right, bottom;
};
// A dialog of the module's, laid out from its template: valid for the length of the
// call that hands it over.
struct DIALOGINFO {
  INT resourceId;
  const OLECHAR* caption;
  BOOL framed;        // a caption bar and a modal frame around the client area
  INT width, height;  // the client area
  const OLECHAR* fontFace;
  INT fontPoints;
  UINT itemCount;
  const DIALOGITEM* items;
};

// What a container offers a control or a page it shows: on Windows the system would
// put their dialogs on the screen, here the host does.
class IImageEditSite : public IUnknown {
 public:
  // Shows the dialog modally; *button is the id of the button that closed it (1 for
  // OK, 2 for the close box).
  virtual HRESULT ShowDialog(const DIALOGINFO* dialog, INT* button) = 0;
  // Shows a message box (`type` as MessageBox takes it: buttons and icon); *button is
  // the button pressed (IDOK = 1). The texts are valid for the length of the call.
  virtual HRESULT ShowMessageBox(const OLECHAR* text, const OLECHAR* caption, UINT type, INT* button) = 0;

 protected:
  ~IImageEditSite() = default;
};

inline constexpr std::int32_t OLEIVERB_PRIMARY = 0;
inline constexpr std::int32_t OLEIVERB_SHOW = -1;
inline constexpr std::int32_t OLEIVERB_OPEN = -2;
inline constexpr std::int32_t OLEIVERB_HIDE = -3;
inline constexpr std::int32_t OLEIVERB_UIACTIVATE = -4;
inline constexpr std::int32_t OLEIVERB_INPLACEACTIVATE = -5;
inline constexpr std::int32_t OLEIVERB_DISCARDUNDOSTATE = -6;
inline constexpr std::int32_t OLEIVERB_PROPERTIES = -7;

// The part of the embedded object's interface a container needs from this control:
// its site and its verbs.
class IImageEditObject : public IUnknown {
 public:
  // The site the control's dialogs (its property page, its About box) are shown
  // through; null takes it away. The control holds a reference.
  virtual HRESULT SetClientSite(IImageEditSite* site) = 0;
  // OLEIVERB_PROPERTIES shows the property page; OLEIVERB_PRIMARY, _SHOW, _UIACTIVATE
  // and _INPLACEACTIVATE answer S_OK once the control is active (IImageEditWindow)
  // and OLE_E_NOT_INPLACEACTIVE before; _HIDE and _DISCARDUNDOSTATE do nothing;
  // _OPEN is E_NOTIMPL (a control has no window of its own to open in), as is any
  // other negative verb; a positive verb the control does not have is
  // OLEOBJ_S_INVALIDVERB, doing nothing.
  virtual HRESULT DoVerb(std::int32_t verb) = 0;

 protected:
  ~IImageEditObject() = default;
};

// A property page as its container drives it: it says its caption and size, shows
// itself through the site the container gives it, and applies what was changed.
class IImageEditPropertyPage : public IUnknown {
 public:
  // The site the page shows through; null takes it away. The page holds a reference.
  virtual HRESULT SetPageSite(IImageEditSite* site) = 0;
  // The caption (the caller frees it) and the size in pixels of the laid-out page.
  virtual HRESULT GetPageInfo(BSTR* title, INT* width, INT* height) = 0;
  // Shows the page modally through the site (without one, nobody sees it).
  virtual HRESULT Show() = 0;
  virtual HRESULT Apply() = 0;
  // S_OK when something changed that Apply would store, S_FALSE otherwise.
  virtual HRESULT IsPageDirty() = 0;

 protected:
  ~IImageEditPropertyPage() = default;
};

// ---- persistence ----

class IErrorLog;  // never used by this module: hosts pass null

// Named values a container keeps for an object, as a page's parameters keep them.
class IPropertyBag : public IUnknown {
 public:
  // Reads `name` into *value; on entry value->vt is the type the reader wants (or
  // VT_EMPTY for any). E_INVALIDARG when the bag has no such value.
  virtual HRESULT Read(const OLECHAR* name, VARIANT* value, IErrorLog* log) = 0;
  virtual HRESULT Write(const OLECHAR* name, VARIANT* value) = 0;

 protected:
  ~IPropertyBag() = default;
};

class IPersist : public IUnknown {
 public:
  virtual HRESULT GetClassID(CLSID* clsid) = 0;

 protected:
  ~IPersist() = default;
};

class IPersistPropertyBag : public IPersist {
 public:
  virtual HRESULT InitNew() = 0;
  virtual HRESULT Load(IPropertyBag* bag, IErrorLog* log) = 0;
  virtual HRESULT Save(IPropertyBag* bag, BOOL clearDirty, BOOL saveAllProperties) = 0;

 protected:
  ~IPersistPropertyBag() = default;
};

// ---- the module's entry points (its only exported functions) ----

using DllGetClassObjectFunction = HRESULT (*)(REFCLSID clsid, REFIID riid, void** object);
using DllCanUnloadNowFunction = HRESULT (*)();
using DllRegisterServerFunction = HRESULT (*)();
using DllUnregisterServerFunction = HRESULT (*)();

}  // namespace ocx

extern "C" {
// The class factory of the control or of its property page; CLASS_E_CLASSNOTAVAILABLE
// for any other class.
ocx::HRESULT DllGetClassObject(ocx::REFCLSID clsid, ocx::REFIID riid, void** object);
// S_OK when no object of the module and no lock is alive, S_FALSE otherwise.
ocx::HRESULT DllCanUnloadNow();
// Registers the type library, then the control's and its property page's classes, in
// the per-user registry file (registry/registry_store.h says where):
// SELFREG_E_TYPELIB when the first step fails, which leaves no class registered;
// SELFREG_E_CLASS when the second does.
ocx::HRESULT DllRegisterServer();
// Removes the module's entries in the same order with the same results, and nothing
// else; what is not registered is no failure.
ocx::HRESULT DllUnregisterServer();
}
