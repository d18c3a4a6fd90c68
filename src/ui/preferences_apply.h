// What happens after the preferences dialog has closed with OK: the change
// flags applied to the running bar in their fixed order, then the save. And
// TLOPTIONS from end to end, with the dialog's modal run given by the platform.
#pragma once

#include <functional>

#include "bar/bar_model.h"
#include "host/arx_module.h"
#include "ui/preferences_dialog.h"

namespace tavlet::ui {

// The bar as the preferences see it: one call per flag's action.
class PreferencesTarget : public PreferencePagesTarget {
 public:
  virtual void SetTabFont(const LogFontA& font) = 0;
  virtual void SetLabelFont(const LogFontA& font) = 0;
  virtual void SetFloating(bool floating, bool apply) = 0;
  virtual void SetTabMode(bool mode, bool apply) = 0;
  virtual void SetDockSide(int side, bool apply) = 0;
  virtual bool Floating() = 0;
  virtual long DrawingCount() = 0;
  // The bar's place on its frame side or beside the command window, computed
  // again (a bar that HideOnSingle hides takes no space there).
  virtual void RepositionDrawingArea() = 0;
  virtual void RepositionCommandArea() = 0;
  virtual void LayOutStrip() = 0;
  virtual void RedrawStrip() = 0;
  // The strip's entries and the tabs sorted again by SortBy.
  virtual void Resort() = 0;
  virtual void RefreshAllPreviews() = 0;
  virtual void ApplyTipSettings() = 0;
  // The frame area laid out once more.
  virtual void RecalcFrameLayout() = 0;
};

// The additions' settings as stored, each at its default when absent; a
// missing section is left missing.
ExtraSettings ReadExtraSettings(const SettingsStore& store);
// Writes only the settings that differ from `stored`: with the extras page
// left alone, no key of the section appears.
void SaveExtraSettings(const SettingsStore& store, const ExtraSettings& stored, const ExtraSettings& chosen);

// Applies the dialog's flags in their order, then SaveSettings and the extras
// page's changes, then the frame's final layout. The fonts that changed are
// written beside.
void ApplyPreferences(const PreferencesDialog& dialog, PreferencesTarget& target, const SettingsStore& store);

// The window side's parts of the target: what only the bar's windows can do.
// An empty one does nothing.
struct BarWindowActions {
  std::function<void(const LogFontA&)> setTabFont;
  std::function<void(const LogFontA&)> setLabelFont;
  std::function<void()> resetStripScroll;
  std::function<void()> applyTipSettings;
  // The capture of one entry, for the preview walk.
  std::function<void(bar::DocEntry&)> updatePreview;
};

// The target over the running bar and the module's registration.
class BarPreferencesTarget final : public PreferencesTarget {
 public:
  BarPreferencesTarget(bar::BarModel& bar, host::ArxModule& arx, BarWindowActions actions)
      : bar_(bar), arx_(arx), actions_(std::move(actions)) {}

  BarSettings& Settings() override { return bar_.Settings(); }
  void SetSortBy(int sortBy) override { bar_.SetSortBy(sortBy); }
  void SetAutoUpdatePreviews(int on) override { bar_.SetAutoUpdatePreviews(on); }
  void RegisterLoadControl(long loadCtrl) override { arx_.WriteRegistry(loadCtrl); }
  void ResetStripScroll() override;
  void SetTabFont(const LogFontA& font) override;
  void SetLabelFont(const LogFontA& font) override;
  void SetFloating(bool floating, bool apply) override { bar_.SetFloating(floating, apply); }
  void SetTabMode(bool mode, bool apply) override { bar_.SetTabMode(mode, apply); }
  void SetDockSide(int side, bool apply) override { bar_.SetDockSide(side, apply); }
  bool Floating() override { return bar_.Floating(); }
  long DrawingCount() override;
  void RepositionDrawingArea() override { bar_.RepositionDrawingArea(); }
  void RepositionCommandArea() override { bar_.RepositionCommandArea(); }
  void LayOutStrip() override { bar_.LayOutStrip(); }
  void RedrawStrip() override;
  void Resort() override;
  void RefreshAllPreviews() override;
  void ApplyTipSettings() override;
  void RecalcFrameLayout() override;

 private:
  bar::BarModel& bar_;
  host::ArxModule& arx_;
  BarWindowActions actions_;
};

// The dialog's modal run: true for OK. It may change the dialog's state and
// must call Ok itself until that succeeds, as the window's OK button does.
using PreferencesModal = std::function<bool(PreferencesDialog& dialog, PreferencesTarget& target)>;

// TLOPTIONS: the dialog over the bar's fields, the stored extras and LastTab;
// LastTab written back whatever the answer; on OK the flags applied and the
// running module's extras told to read their settings again. Nothing without a bar.
void RunPreferences(bar::BarModel* bar, host::ArxModule& arx, const SettingsStore& store,
                    DisplayDefaults& display, int logPixelsY, BarWindowActions actions,
                    const PreferencesModal& modal);

}  // namespace tavlet::ui
