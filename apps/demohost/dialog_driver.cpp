#include "dialog_driver.h"

#include <commctrl.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "image_file.h"
#include "platform/win32/registry_backend_win32.h"
#include "settings/settings_store.h"
#include "settings/settings_table.h"
#include "text/codepage.h"

namespace tavlet::demo {
namespace {

struct Search {
  const std::string* title;
  HWND found;
};

BOOL CALLBACK FindInThread(HWND window, LPARAM data) {
  auto* search = reinterpret_cast<Search*>(data);
  char className[16] = {};
  char text[256] = {};
  GetClassNameA(window, className, sizeof className);
  GetWindowTextA(window, text, sizeof text);
  if (std::string(className) == "#32770" && *search->title == text && IsWindowVisible(window)) {
    search->found = window;
    return FALSE;
  }
  return TRUE;
}

std::string ReadAll(const std::string& path, bool& found) {
  std::ifstream in(path, std::ios::binary);
  found = static_cast<bool>(in);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

std::string Visible(const std::string& bytes) {
  std::string out;
  for (char c : bytes) out += c == '\r' ? std::string("\\r") : c == '\n' ? std::string("\\n\n") : std::string(1, c);
  return out;
}

// Scripts are UTF-8 or code page 936; the windows hold code page 936.
std::string Cp936(const std::string& text) {
  const int wide = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), static_cast<int>(text.size()),
                                       nullptr, 0);
  return wide > 0 ? text::FromUtf8(text) : text;
}

int IdOf(const std::string& text) { return std::atoi(text.c_str()); }

void TypeInto(HWND control, const std::string& text) {
  char className[32] = {};
  GetClassNameA(control, className, sizeof className);
  HWND target = control;
  if (lstrcmpiA(className, "ComboBox") == 0) {
    if (HWND edit = FindWindowExA(control, nullptr, "Edit", nullptr)) target = edit;
  }
  SetFocus(target);
  SendMessageA(target, EM_SETSEL, 0, -1);
  SendMessageA(target, WM_CHAR, VK_BACK, 0);
  // As an input method gives them: whole characters, converted from code page 936.
  const int length = MultiByteToWideChar(936, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(length > 0 ? length : 0), L'\0');
  if (length > 0) MultiByteToWideChar(936, 0, text.data(), static_cast<int>(text.size()), wide.data(), length);
  for (wchar_t c : wide) SendMessageW(target, WM_CHAR, c, 0);
}

bool ClickHeader(HWND list, int column, std::string& error) {
  HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
  RECT item{};
  if (!header || !SendMessageA(header, HDM_GETITEMRECT, column, reinterpret_cast<LPARAM>(&item))) {
    error = "dialog: the list has no column " + std::to_string(column);
    return false;
  }
  const LPARAM at = MAKELPARAM((item.left + item.right) / 2, (item.top + item.bottom) / 2);
  SendMessageA(header, WM_LBUTTONDOWN, MK_LBUTTON, at);
  SendMessageA(header, WM_LBUTTONUP, 0, at);
  return true;
}

}  // namespace

HWND FindDialog(const std::string& title) {
  Search search{&title, nullptr};
  EnumThreadWindows(GetCurrentThreadId(), FindInThread, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

bool RunDialogStep(const DialogStepContext& context, const ScriptStep& step, std::string& error) {
  std::vector<std::string> args = step.args;
  for (std::string& arg : args) arg = Cp936(arg);
  HWND dialog = FindDialog(args[0]);
  if (!dialog) {
    error = "dialog: no open dialog '" + args[0] + "'";
    return false;
  }
  const std::string& action = args[1];
  auto needs = [&](std::size_t count) {
    if (args.size() == count) return true;
    error = "dialog: '" + action + "' takes " + std::to_string(count - 2) + " argument(s)";
    return false;
  };
  auto control = [&](const std::string& id) {
    HWND child = GetDlgItem(dialog, IdOf(id));
    if (!child) error = "dialog: no control " + id;
    return child;
  };
  if (action == "type") {
    if (!needs(4)) return false;
    HWND child = control(args[2]);
    if (!child) return false;
    TypeInto(child, args[3]);
  } else if (action == "select") {
    if (!needs(4)) return false;
    HWND child = control(args[2]);
    if (!child) return false;
    const LRESULT index = SendMessageA(child, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                       reinterpret_cast<LPARAM>(args[3].c_str()));
    if (index == CB_ERR) {
      error = "dialog: no entry '" + args[3] + "' in combo " + args[2];
      return false;
    }
    SendMessageA(child, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(IdOf(args[2]), CBN_SELCHANGE), reinterpret_cast<LPARAM>(child));
  } else if (action == "click") {
    if (!needs(3)) return false;
    HWND child = control(args[2]);
    if (!child) return false;
    SendMessageA(child, BM_CLICK, 0, 0);
  } else if (action == "header") {
    if (!needs(4)) return false;
    HWND child = control(args[2]);
    if (!child || !ClickHeader(child, IdOf(args[3]), error)) return false;
  } else if (action == "size") {
    if (!needs(4)) return false;
    RECT r{};
    GetWindowRect(dialog, &r);
    r.right = r.left + std::atoi(args[2].c_str());
    r.bottom = r.top + std::atoi(args[3].c_str());
    // What a drag of the corner does: WM_SIZING may hold the rectangle back.
    SendMessageA(dialog, WM_SIZING, WMSZ_BOTTOMRIGHT, reinterpret_cast<LPARAM>(&r));
    SetWindowPos(dialog, nullptr, r.left, r.top, r.right - r.left, r.bottom - r.top, SWP_NOZORDER);
    context.log << "    dialog size " << r.right - r.left << "x" << r.bottom - r.top << std::endl;
  } else if (action == "screenshot") {
    if (!needs(3)) return false;
    SetForegroundWindow(dialog);
    RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW | RDW_FRAME);
    context.demo.Pump(200);
    const Picture shot = CaptureWindow(dialog);
    const std::string path = context.outputFolder.empty() ? args[2] : context.outputFolder + "\\" + args[2];
    if (!WritePicture(shot, path, error)) return false;
    context.log << "    screenshot " << path << " (" << shot.width << "x" << shot.height << ")" << std::endl;
  } else if (action == "close") {
    if (!needs(2)) return false;
    SendMessageA(dialog, WM_CLOSE, 0, 0);
  } else {
    error = "dialog: unknown action '" + action + "'; expected type, select, click, header, size, screenshot or close";
    return false;
  }
  return true;
}

bool RunWorksetsStep(const DialogStepContext& context, const ScriptStep& step, std::string& error) {
  const auto& args = step.args;
  Win32Registry registry;
  SettingsStore store(registry, DefaultSettingsRoot());
  if (args[0] == "new") {
    const std::string path = context.outputFolder.empty() ? args[1] : context.outputFolder + "\\" + args[1];
    DeleteFileA(path.c_str());
    if (args.size() == 3) {
      bool found = false;
      const std::string start = ReadAll(context.resolve(args[2]), found);
      if (!found) {
        error = "worksets: no such file '" + args[2] + "'";
        return false;
      }
      std::ofstream(path, std::ios::binary) << start;
    }
    if (!WriteString(store, keys::WorksetsPath, path)) {
      error = "worksets: cannot write the setting of the worksets file";
      return false;
    }
    context.log << "    worksets file " << path << std::endl;
    return true;
  }
  if (args[0] != "check") {
    error = "worksets: expected 'new NAME [FROM]' or 'check EXPECTED'";
    return false;
  }
  bool haveActual = false, haveExpected = false;
  const std::string actualPath = ReadString(store, keys::WorksetsPath);
  const std::string actual = ReadAll(actualPath, haveActual);
  const std::string expected = ReadAll(context.resolve(args[1]), haveExpected);
  if (!haveExpected) {
    error = "worksets: no such file '" + args[1] + "'";
    return false;
  }
  if (!haveActual || actual != expected) {
    error = "worksets: " + actualPath + (haveActual ? " differs from " : " is missing; expected ") + args[1] +
            "\n--- found\n" + Visible(actual) + "--- expected\n" + Visible(expected);
    return false;
  }
  return true;
}

}  // namespace tavlet::demo
