// The window framework of the Win32 layer, in raw Win32: window classes
// registered once per module, one window procedure that finds the C++ object of
// a window and dispatches to its On... handlers, and the module's resource
// handle made current around every creation.
//
// Example:
//   class Strip final : public win32::Window {
//     void OnPaint(HDC dc, const RECT& area) override { ... }
//   };
//   win32::RegisterWindowClass("PreviewStrip", CS_DBLCLKS, IDC_ARROW, nullptr);
//   auto* strip = new Strip;  // deletes itself after WM_NCDESTROY (OwnedByWindow)
//   strip->Create("PreviewStrip", 0, "", WS_CHILD, {0, 0, 10, 10}, parent, 1001);
#pragma once

#include <windows.h>

namespace tavlet::win32 {

// The module's own instance (the DLL's when the code runs in one).
HINSTANCE ModuleInstance();
void SetModuleInstance(HINSTANCE instance);

// The instance that windows and resources are made from at this moment: the
// process's until a ResourceScope says otherwise.
HINSTANCE CurrentResourceInstance();
// Sets the current resource handle and gives the one before (null: the process's).
HINSTANCE SetCurrentResourceInstance(HINSTANCE instance);

// Makes `instance` (by default the module's) the current resource handle for its
// lifetime and then restores the one before; scopes nest.
class ResourceScope {
 public:
  explicit ResourceScope(HINSTANCE instance = ModuleInstance());
  ~ResourceScope();
  ResourceScope(const ResourceScope&) = delete;
  ResourceScope& operator=(const ResourceScope&) = delete;

 private:
  HINSTANCE previous_;
};

// Registers a class of Window objects under the current resource instance,
// once; false only when the platform refuses. `cursor` is a system cursor id.
bool RegisterWindowClass(const char* name, UINT style, LPCSTR cursor, HBRUSH background);
// Unregisters every class RegisterWindowClass made, so that a module unloaded
// and loaded again registers its procedures afresh.
void UnregisterWindowClasses();

class Window {
 public:
  Window() = default;
  virtual ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  // Creates the window under the current resource instance; the class must have
  // been registered with RegisterWindowClass. Null on failure.
  HWND Create(const char* className, DWORD exStyle, const char* text, DWORD style, const RECT& rect, HWND parent,
              UINT_PTR idOrMenu);
  HWND hwnd() const { return hwnd_; }
  // The object of a window made by Create, or null.
  static Window* FromHandle(HWND hwnd);

 protected:
  // Every message arrives here first; the default dispatches to the handlers
  // below and gives the rest to Default().
  virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
  // DefWindowProc of the message being handled.
  LRESULT Default();

  // Return -1 to refuse the creation.
  virtual int OnCreate(CREATESTRUCTA&) { return 0; }
  virtual void OnDestroy() {}
  virtual void OnSize(UINT, int, int) {}
  // `dc` is the paint DC of BeginPaint.
  virtual void OnPaint(HDC, const RECT&) { Default(); }
  virtual bool OnEraseBackground(HDC) { return Default() != 0; }
  virtual void OnTimer(UINT_PTR) {}
  // True: the cursor was set. False: the default handling runs.
  virtual bool OnSetCursor(HWND, UINT, UINT) { return false; }
  virtual void OnMouseMove(UINT, int, int) {}
  virtual void OnLButtonDown(UINT, int, int) { Default(); }
  virtual void OnLButtonUp(UINT, int, int) { Default(); }
  virtual void OnLButtonDblClk(UINT, int, int) { Default(); }
  virtual void OnRButtonDown(UINT, int, int) { Default(); }
  virtual void OnScroll(bool, int, int, HWND) {}
  virtual void OnClose() { Default(); }
  // After WM_NCDESTROY, when the object no longer has a window.
  virtual void OnFinalMessage() {}

  // The message being handled (for Default and for handlers that need it).
  const MSG& CurrentMessage() const { return current_; }

 private:
  friend bool RegisterWindowClass(const char*, UINT, LPCSTR, HBRUSH);
  static LRESULT CALLBACK Procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

  HWND hwnd_ = nullptr;
  MSG current_{};
};

// A window object that deletes itself when its window is gone.
class OwnedByWindow : public Window {
 protected:
  void OnFinalMessage() override { delete this; }
};

}  // namespace tavlet::win32
