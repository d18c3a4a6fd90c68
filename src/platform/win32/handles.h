// Owners for the Win32 handles of the layer. Each type ends its handle the one way
// that matches how it was obtained, so an early return or an exception between the
// two calls can't leak it. Owners are declared in the order the handles must die in
// reverse: a bitmap before the selection that puts it into a context, so that the
// selection is undone before the bitmap is deleted.
#pragma once

#include <windows.h>

#include <utility>

namespace tavlet::win32 {

// One handle ended by Traits::Close; Traits::Valid tells a live handle from the
// failure value of the call that made it.
template <typename Handle, typename Traits>
class UniqueHandle {
 public:
  UniqueHandle() noexcept = default;
  explicit UniqueHandle(Handle handle) noexcept : handle_(handle) {}
  ~UniqueHandle() { Close(); }
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.Release()) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) {
      Close();
      handle_ = other.Release();
    }
    return *this;
  }
  UniqueHandle(const UniqueHandle&) = delete;
  UniqueHandle& operator=(const UniqueHandle&) = delete;

  Handle get() const noexcept { return handle_; }
  bool valid() const noexcept { return Traits::Valid(handle_); }

  // Hands the handle over to the caller, who ends it.
  Handle Release() noexcept { return std::exchange(handle_, Handle{}); }

  // True when there was nothing to end or ending it succeeded.
  bool Close() noexcept {
    const Handle handle = Release();
    return !Traits::Valid(handle) || Traits::Close(handle);
  }

  // For calls that give the handle back through a pointer (RegOpenKeyExA).
  Handle* Out() noexcept {
    Close();
    return &handle_;
  }

 private:
  Handle handle_{};
};

namespace handle_traits {

struct MemoryDc {
  static bool Valid(HDC dc) { return dc != nullptr; }
  static bool Close(HDC dc) { return DeleteDC(dc) != FALSE; }
};

struct GdiObject {
  static bool Valid(HGDIOBJ object) { return object != nullptr; }
  static bool Close(HGDIOBJ object) { return DeleteObject(object) != FALSE; }
};

struct RegKey {
  static bool Valid(HKEY key) { return key != nullptr; }
  static bool Close(HKEY key) { return RegCloseKey(key) == ERROR_SUCCESS; }
};

struct Module {
  static bool Valid(HMODULE module) { return module != nullptr; }
  static bool Close(HMODULE module) { return FreeLibrary(module) != FALSE; }
};

// CreateFileA fails with INVALID_HANDLE_VALUE, CreateThread with null.
struct KernelHandle {
  static bool Valid(HANDLE handle) { return handle != nullptr && handle != INVALID_HANDLE_VALUE; }
  static bool Close(HANDLE handle) { return CloseHandle(handle) != FALSE; }
};

struct FindHandle {
  static bool Valid(HANDLE handle) { return handle != nullptr && handle != INVALID_HANDLE_VALUE; }
  static bool Close(HANDLE handle) { return FindClose(handle) != FALSE; }
};

}  // namespace handle_traits

// From CreateCompatibleDC.
using MemoryDc = UniqueHandle<HDC, handle_traits::MemoryDc>;
// Any pen, brush, font, bitmap, region or palette.
template <typename T>
using GdiObject = UniqueHandle<T, handle_traits::GdiObject>;
using RegKey = UniqueHandle<HKEY, handle_traits::RegKey>;
// From LoadLibraryA.
using Module = UniqueHandle<HMODULE, handle_traits::Module>;
// Files, threads and anything else CloseHandle ends.
using KernelHandle = UniqueHandle<HANDLE, handle_traits::KernelHandle>;
// From FindFirstFileA.
using FindHandle = UniqueHandle<HANDLE, handle_traits::FindHandle>;

// GetDC of a window (null: the screen), given back by ReleaseDC.
class ScreenDc {
 public:
  explicit ScreenDc(HWND window = nullptr) noexcept : window_(window), dc_(GetDC(window)) {}
  ~ScreenDc() {
    if (dc_ != nullptr) ReleaseDC(window_, dc_);
  }
  ScreenDc(const ScreenDc&) = delete;
  ScreenDc& operator=(const ScreenDc&) = delete;

  HDC get() const noexcept { return dc_; }

 private:
  HWND window_;
  HDC dc_;
};

// BeginPaint ... EndPaint of a WM_PAINT.
class PaintDc {
 public:
  explicit PaintDc(HWND window) noexcept : window_(window), dc_(BeginPaint(window, &paint_)) {}
  ~PaintDc() {
    if (dc_ != nullptr) EndPaint(window_, &paint_);
  }
  PaintDc(const PaintDc&) = delete;
  PaintDc& operator=(const PaintDc&) = delete;

  HDC get() const noexcept { return dc_; }

 private:
  HWND window_;
  PAINTSTRUCT paint_{};
  HDC dc_;
};

// `object` selected into `dc` until the end of the scope, then the one it replaced.
// Selects nothing when either is null.
class SelectedObject {
 public:
  SelectedObject(HDC dc, HGDIOBJ object) noexcept
      : dc_(dc),
        previous_(dc != nullptr && object != nullptr ? SelectObject(dc, object) : nullptr) {}
  ~SelectedObject() {
    if (previous_ != nullptr && previous_ != HGDI_ERROR) SelectObject(dc_, previous_);
  }
  SelectedObject(const SelectedObject&) = delete;
  SelectedObject& operator=(const SelectedObject&) = delete;

 private:
  HDC dc_;
  HGDIOBJ previous_;
};

// SaveDC, and RestoreDC to that level when restored or dropped.
class SavedDcState {
 public:
  SavedDcState() noexcept = default;
  explicit SavedDcState(HDC dc) noexcept : dc_(dc), level_(dc != nullptr ? SaveDC(dc) : 0) {}
  ~SavedDcState() { Restore(); }
  SavedDcState(SavedDcState&& other) noexcept
      : dc_(other.dc_), level_(std::exchange(other.level_, 0)) {}
  SavedDcState& operator=(SavedDcState&& other) noexcept {
    if (this != &other) {
      Restore();
      dc_ = other.dc_;
      level_ = std::exchange(other.level_, 0);
    }
    return *this;
  }
  SavedDcState(const SavedDcState&) = delete;
  SavedDcState& operator=(const SavedDcState&) = delete;

  void Restore() noexcept {
    if (level_ != 0) RestoreDC(dc_, level_);
    level_ = 0;
  }

 private:
  HDC dc_ = nullptr;
  int level_ = 0;
};

}  // namespace tavlet::win32
