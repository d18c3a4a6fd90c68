// A preferences target that changes nothing but the settings it holds and the
// sort order it is given: the dialog's own behaviour, without a bar behind it.
#pragma once

#include "ui/preferences_apply.h"

namespace tavlet::win32 {

class StubPreferencesTarget final : public ui::PreferencesTarget {
 public:
  BarSettings& Settings() override { return settings; }
  void SetSortBy(int sortBy) override { settings.SortBy = sortBy; }
  void SetAutoUpdatePreviews(int) override {}
  void RegisterLoadControl(long) override {}
  void ResetStripScroll() override {}
  void SetTabFont(const LogFontA&) override {}
  void SetLabelFont(const LogFontA&) override {}
  void SetFloating(bool, bool) override {}
  void SetTabMode(bool, bool) override {}
  void SetDockSide(int, bool) override {}
  bool Floating() override { return false; }
  long DrawingCount() override { return 2; }
  void RepositionDrawingArea() override {}
  void RepositionCommandArea() override {}
  void LayOutStrip() override {}
  void RedrawStrip() override {}
  void Resort() override {}
  void RefreshAllPreviews() override {}
  void ApplyTipSettings() override {}
  void RecalcFrameLayout() override {}
  BarSettings settings;
};

}  // namespace tavlet::win32
