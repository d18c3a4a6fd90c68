// The vocabulary shared by every interface of the host port. The port is the one
// seam between the portable core and the host: the binding to the real host is
// built by the host's own compiler, so nothing that crosses it may depend on a
// compiler's library or exception model. Only C types cross: integers, doubles,
// `const char*` text in code page 936, opaque handles, plain structures and
// abstract classes whose every operation returns a `Result`.
#pragma once

namespace tavlet::port {

// A 32-bit host builds its COM interfaces with __stdcall; every port operation
// uses the same convention so that a binding can forward without a thunk.
#if defined(_WIN32) && !defined(_WIN64)
#define TAVLET_PORT_CALL __stdcall
#else
#define TAVLET_PORT_CALL
#endif

// HRESULT semantics: negative is failure. `long` keeps the real signature; only
// the low 32 bits are meaningful on hosts where `long` is wider.
using Result = long;

constexpr Result MakeResult(unsigned int bits) { return static_cast<Result>(static_cast<int>(bits)); }
constexpr bool Failed(Result r) { return static_cast<int>(r) < 0; }
constexpr bool Succeeded(Result r) { return !Failed(r); }
constexpr unsigned int ResultBits(Result r) { return static_cast<unsigned int>(r); }

inline constexpr Result kOk = 0;
inline constexpr Result kFalse = 1;  // success with nothing to give (end of a walk, absent object)
inline constexpr Result kNotImplemented = MakeResult(0x80004001u);
inline constexpr Result kNoInterface = MakeResult(0x80004002u);
inline constexpr Result kPointer = MakeResult(0x80004003u);
inline constexpr Result kFail = MakeResult(0x80004005u);
inline constexpr Result kUnexpected = MakeResult(0x8000FFFFu);
inline constexpr Result kAccessDenied = MakeResult(0x80070005u);
inline constexpr Result kOutOfMemory = MakeResult(0x8007000Eu);
inline constexpr Result kInvalidArgument = MakeResult(0x80070057u);
inline constexpr Result kBadIndex = MakeResult(0x8002000Bu);       // DISP_E_BADINDEX
inline constexpr Result kDispatchException = MakeResult(0x80020009u);  // DISP_E_EXCEPTION
inline constexpr Result kCallRejected = MakeResult(0x80010001u);   // RPC_E_CALL_REJECTED: host busy
// The binding's word for a call that ended by an exception inside the host that
// is no COM error (a structured exception, caught at the seam): the core raises it
// as host::HostException, which only a handler's catch-all takes.
inline constexpr Result kHostException = MakeResult(0xE0000001u);

// Opaque identities of host objects that the host owns and does not count
// references for. Compared by value, never dereferenced by the core.
struct DocumentTag;
using Document = DocumentTag*;  // AcApDocument*
struct DatabaseTag;
using Database = DatabaseTag*;  // AcDbDatabase*
struct WindowTag;
using Window = WindowTag*;      // HWND

// Receives text from the host. The host calls Assign at most once per call that
// takes a sink and the bytes are valid only during that call; a sink that is
// never assigned means empty text. Bytes are code page 936, not terminated.
class TextSink {
 public:
  virtual void TAVLET_PORT_CALL Assign(const char* bytes, long length) = 0;

 protected:
  ~TextSink() = default;
};

// Result codes of the editor's acedXxx calls (the RTxxx values).
inline constexpr long kRtNormal = 5100;
inline constexpr long kRtNone = 5000;
inline constexpr long kRtError = -5001;
inline constexpr long kRtCancel = -5002;
inline constexpr long kRtReject = -5003;

// resbuf type codes of the values that system variables take.
enum ValueType : long {
  kValueNone = 5000,
  kValueReal = 5001,
  kValuePoint = 5002,
  kValueShort = 5003,
  kValueString = 5005,
  kValuePoint3 = 5009,
  kValueLong = 5010,
};

// A typed value (the plain part of a resbuf). `text` is read only by calls that
// take a value in; a string going out travels through a TextSink instead.
struct Value {
  long type = kValueNone;
  long integer = 0;  // kValueShort and kValueLong
  double real = 0;
  double point[3] = {0, 0, 0};
  const char* text = nullptr;
};

// A point as automation passes it: a variant array of two or three doubles.
struct Point {
  double x = 0, y = 0, z = 0;
  long dimensions = 3;
};

// Automation arguments that may be left out (a VT_ERROR DISP_E_PARAMNOTFOUND
// variant in the real call).
inline constexpr long kMissingFlag = -1;

// MessageBox flags and answers, with the platform's values.
inline constexpr unsigned long kBoxOk = 0x0;
inline constexpr unsigned long kBoxOkCancel = 0x1;
inline constexpr unsigned long kBoxYesNoCancel = 0x3;
inline constexpr unsigned long kBoxYesNo = 0x4;
inline constexpr long kAnswerOk = 1;
inline constexpr long kAnswerCancel = 2;
inline constexpr long kAnswerYes = 6;
inline constexpr long kAnswerNo = 7;

}  // namespace tavlet::port

namespace tavlet::port {

// Base of every object the host hands out by pointer: the receiver owns one
// reference and gives it back with Release, as with COM.
class Counted {
 public:
  virtual unsigned long TAVLET_PORT_CALL AddRef() = 0;
  virtual unsigned long TAVLET_PORT_CALL Release() = 0;

 protected:
  ~Counted() = default;
};

}  // namespace tavlet::port
