#include "platform/win32/file_preview_panel_win32.h"

#include <shlobj.h>
#include <shobjidl.h>

#include "operations/drawing_path.h"

namespace tavlet {
namespace {

constexpr char kClassName[] = "TavletFilePreviewPanel";

const IID kIidExtractImage = {0xBB2E617C, 0x0920, 0x11D1, {0x9A, 0x0B, 0x00, 0xC0, 0x4F, 0xC2, 0xD6, 0xC1}};

template <typename T>
void Release(T*& p) {
  if (p != nullptr) p->Release();
  p = nullptr;
}

bool ToWide(const std::string& text, wchar_t (&buffer)[MAX_PATH]) {
  buffer[0] = 0;
  return MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, buffer, MAX_PATH) > 0;
}

void FillSolid(HDC dc, int x, int y, int cx, int cy, COLORREF color) {
  RECT r{x, y, x + cx, y + cy};
  win32::GdiObject<HBRUSH> brush(CreateSolidBrush(color));
  FillRect(dc, &r, brush.get());
}

}  // namespace

GdiPanelImage::GdiPanelImage(HBITMAP bitmap) : bitmap_(bitmap) {
  BITMAP info{};
  if (bitmap_.valid() && GetObjectA(bitmap_.get(), sizeof info, &info) == sizeof info) {
    width_ = info.bmWidth;
    height_ = info.bmHeight;
  }
}

std::unique_ptr<PanelImage> ShellImageExtractor::Extract(const std::string& path, int width, int height) {
  PathParts parts = SplitPath(path);
  wchar_t folderPath[MAX_PATH], fileName[MAX_PATH], fullPath[MAX_PATH];
  if (!ToWide(parts.drive + parts.directory, folderPath) || !ToWide(parts.name + parts.extension, fileName) ||
      !ToWide(path, fullPath)) {
    return nullptr;
  }
  IShellFolder* desktop = nullptr;
  IShellFolder* folder = nullptr;
  IExtractImage* extract = nullptr;
  IPersistFile* persist = nullptr;
  LPITEMIDLIST folderItem = nullptr;
  LPITEMIDLIST fileItem = nullptr;
  HBITMAP bitmap = nullptr;
  // Each step stops the chain on failure; every interface is released below, in
  // the reverse order.
  if (SUCCEEDED(SHGetDesktopFolder(&desktop)) &&
      SUCCEEDED(desktop->ParseDisplayName(owner_, nullptr, folderPath, nullptr, &folderItem, nullptr)) &&
      SUCCEEDED(desktop->BindToObject(folderItem, nullptr, IID_IShellFolder, reinterpret_cast<void**>(&folder))) &&
      SUCCEEDED(folder->ParseDisplayName(owner_, nullptr, fileName, nullptr, &fileItem, nullptr)) &&
      SUCCEEDED(folder->GetUIObjectOf(owner_, 1, const_cast<LPCITEMIDLIST*>(&fileItem), kIidExtractImage, nullptr,
                                      reinterpret_cast<void**>(&extract)))) {
    if (SUCCEEDED(extract->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&persist)))) {
      persist->Load(fullPath, 0);
    }
    wchar_t location[MAX_PATH] = {};
    SIZE size{width, height};
    DWORD priority = 0;
    DWORD flags = IEIFLAG_SCREEN;
    HRESULT located = extract->GetLocation(location, MAX_PATH, &priority, &size, 24, &flags);
    if (SUCCEEDED(located) || located == E_PENDING) {
      if (FAILED(extract->Extract(&bitmap))) bitmap = nullptr;
    }
  }
  Release(persist);
  Release(extract);
  if (fileItem != nullptr) CoTaskMemFree(fileItem);
  Release(folder);
  if (folderItem != nullptr) CoTaskMemFree(folderItem);
  Release(desktop);
  if (bitmap == nullptr) return nullptr;
  return std::make_unique<GdiPanelImage>(bitmap);
}

void GdiPanelCanvas::Draw3dRect(const PreviewRect& rect) {
  const COLORREF topLeft = GetSysColor(COLOR_3DSHADOW);
  const COLORREF bottomRight = GetSysColor(COLOR_3DLIGHT);
  const int cx = rect.Width(), cy = rect.Height();
  FillSolid(dc_, rect.left, rect.top, cx - 1, 1, topLeft);
  FillSolid(dc_, rect.left, rect.top, 1, cy - 1, topLeft);
  FillSolid(dc_, rect.right - 1, rect.top, 1, cy, bottomRight);
  FillSolid(dc_, rect.left, rect.bottom - 1, cx, 1, bottomRight);
}

void GdiPanelCanvas::FillFace(const PreviewRect& rect) {
  FillSolid(dc_, rect.left, rect.top, rect.Width(), rect.Height(), GetSysColor(COLOR_3DFACE));
}

void GdiPanelCanvas::DrawImage(const PanelImage& image, const PreviewRect& dest) {
  const auto& bitmap = static_cast<const GdiPanelImage&>(image);
  DrawStateA(dc_, nullptr, nullptr, reinterpret_cast<LPARAM>(bitmap.handle()), 0, dest.left, dest.top,
             dest.Width(), dest.Height(), DST_BITMAP);
}

FilePreviewPanelWindow::FilePreviewPanelWindow(FileSystem& fs, ShellImageSource* shell)
    : ownShell_(shell == nullptr ? std::make_unique<ShellImageExtractor>(nullptr) : nullptr),
      shell_(shell == nullptr ? ownShell_.get() : shell),
      panel_(fs, *shell_) {}

FilePreviewPanelWindow::~FilePreviewPanelWindow() {
  if (hwnd_ != nullptr) DestroyWindow(hwnd_);
}

void UnregisterPreviewPanelClass() { UnregisterClassA(kClassName, GetModuleHandleA(nullptr)); }

bool FilePreviewPanelWindow::Create(HWND parent, const RECT& rect, int id) {
  HINSTANCE instance = GetModuleHandleA(nullptr);
  WNDCLASSA windowClass{};
  if (!GetClassInfoA(instance, kClassName, &windowClass)) {
    windowClass.lpfnWndProc = &WindowProc;
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursor(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kClassName;
    if (RegisterClassA(&windowClass) == 0) return false;
  }
  HWND hwnd = CreateWindowExA(0, kClassName, "", WS_CHILD | WS_VISIBLE, rect.left, rect.top,
                              rect.right - rect.left, rect.bottom - rect.top, parent,
                              reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), instance, this);
  return hwnd != nullptr;
}

void FilePreviewPanelWindow::SetFiles(const std::vector<std::string>& paths) {
  RECT client{};
  if (hwnd_ != nullptr) GetClientRect(hwnd_, &client);
  panel_.SetFiles(paths, client.right - client.left);
  if (hwnd_ != nullptr) RedrawWindow(hwnd_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
}

void FilePreviewPanelWindow::PaintTo(HDC dc) {
  RECT client{};
  GetClientRect(hwnd_, &client);
  GdiPanelCanvas canvas(dc, drawDib_);
  panel_.Paint(canvas, ToPreviewRect(client));
}

LRESULT CALLBACK FilePreviewPanelWindow::WindowProc(HWND hwnd, UINT message, WPARAM wParam,
                                                    LPARAM lParam) noexcept {
  auto* self = reinterpret_cast<FilePreviewPanelWindow*>(GetWindowLongPtrA(hwnd, GWLP_USERDATA));
  if (message == WM_NCCREATE) {
    self = static_cast<FilePreviewPanelWindow*>(reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams);
    SetWindowLongPtrA(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    self->hwnd_ = hwnd;
  }
  if (self == nullptr) return DefWindowProcA(hwnd, message, wParam, lParam);
  try {
    return self->OnMessage(message, wParam, lParam);
  } catch (...) {
    // Nothing may escape into the host's message loop; the panel just stays as it was.
    return DefWindowProcA(hwnd, message, wParam, lParam);
  }
}

LRESULT FilePreviewPanelWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE:
      drawDib_ = DrawDibOpen();
      return 0;
    case WM_DESTROY:
      if (drawDib_ != nullptr) DrawDibClose(drawDib_);
      drawDib_ = nullptr;
      return 0;
    case WM_NCDESTROY:
      SetWindowLongPtrA(hwnd_, GWLP_USERDATA, 0);
      hwnd_ = nullptr;
      return 0;
    case WM_ERASEBKGND:
      return 1;  // the paint covers every pixel
    case WM_PAINT: {
      win32::PaintDc paint(hwnd_);
      PaintTo(paint.get());
      return 0;
    }
    case WM_PRINTCLIENT:
      PaintTo(reinterpret_cast<HDC>(wParam));
      return 0;
    default:
      return DefWindowProcA(hwnd_, message, wParam, lParam);
  }
}

}  // namespace tavlet
