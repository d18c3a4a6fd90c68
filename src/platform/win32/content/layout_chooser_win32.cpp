#include "platform/win32/content/layout_chooser_win32.h"

#include "layout_chooser_win32.rh"
#include "platform/win32/window.h"

static_assert(IDD_SELECT_LAYOUT == tavlet::win32::kSelectLayoutDialogId);
static_assert(IDC_LAYOUT_LIST == tavlet::win32::kLayoutListId);

namespace tavlet::win32 {
namespace {

struct Question {
  const std::string* title;
  const std::vector<std::string>* names;
  std::vector<std::string> selected;
};

void CollectSelection(HWND list, Question& question) {
  question.selected.clear();
  const LRESULT index = SendMessageA(list, LB_GETCURSEL, 0, 0);
  if (index == LB_ERR) return;
  const LRESULT length = SendMessageA(list, LB_GETTEXTLEN, static_cast<WPARAM>(index), 0);
  if (length == LB_ERR) return;
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  SendMessageA(list, LB_GETTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text.data()));
  text.resize(static_cast<std::size_t>(length));
  question.selected.push_back(std::move(text));
}

INT_PTR CALLBACK QuestionProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* question = reinterpret_cast<Question*>(GetWindowLongPtrA(dialog, DWLP_USER));
  switch (message) {
    case WM_INITDIALOG: {
      question = reinterpret_cast<Question*>(lParam);
      SetWindowLongPtrA(dialog, DWLP_USER, lParam);
      SetWindowTextA(dialog, question->title->c_str());
      HWND list = GetDlgItem(dialog, kLayoutListId);
      for (const std::string& name : *question->names)
        SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
      return TRUE;
    }
    case WM_COMMAND:
      if (!question) break;
      if (LOWORD(wParam) == kLayoutListId && HIWORD(wParam) == LBN_SELCHANGE) {
        CollectSelection(reinterpret_cast<HWND>(lParam), *question);
        return TRUE;
      }
      if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
        EndDialog(dialog, LOWORD(wParam));
        return TRUE;
      }
      break;
    default:
      break;
  }
  return FALSE;
}

}  // namespace

std::vector<std::string> LayoutChooserWin32::Choose(const std::string& title, const std::vector<std::string>& names) {
  Question question{&title, &names, {}};
  ResourceScope resources(resources_);
  const INT_PTR answer = DialogBoxParamA(resources_, MAKEINTRESOURCEA(kSelectLayoutDialogId),
                                         owner_ ? owner_() : nullptr, QuestionProcedure,
                                         reinterpret_cast<LPARAM>(&question));
  if (answer != IDOK) return {};
  return question.selected;
}

}  // namespace tavlet::win32
