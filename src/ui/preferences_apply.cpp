#include "ui/preferences_apply.h"

#include "bar/strip_actions.h"
#include "host/com_error.h"
#include "host/module.h"
#include "host/module_extras.h"
#include "settings/extra_settings.h"

namespace tavlet::ui {

namespace {

// The extras page's controls and the settings they stand for, in the order they are saved.
constexpr std::pair<const SettingKey*, int ExtraSettings::*> kExtraKeys[] = {
    {&keys::SheetSetListByEncoding, &ExtraSettings::sheetSetListByEncoding},
    {&keys::ExtraDrawingCommands, &ExtraSettings::extraDrawingCommands},
    {&keys::SessionRestore, &ExtraSettings::sessionRestore},
    {&keys::KeepThumbnails, &ExtraSettings::keepThumbnails},
    {&keys::CtrlTabSwitcher, &ExtraSettings::ctrlTabSwitcher},
};

}  // namespace

ExtraSettings ReadExtraSettings(const SettingsStore& store) {
  ExtraSettings extras;
  for (const auto& [key, field] : kExtraKeys) extras.*field = ReadExtra(store, *key);
  return extras;
}

void SaveExtraSettings(const SettingsStore& store, const ExtraSettings& stored, const ExtraSettings& chosen) {
  for (const auto& [key, field] : kExtraKeys)
    if (chosen.*field != stored.*field) WriteInt(store, *key, chosen.*field);
}

void ApplyPreferences(const PreferencesDialog& dialog, PreferencesTarget& target, const SettingsStore& store) {
  const PreferenceFlags& f = dialog.flags;
  BarSettings& bar = target.Settings();
  if (f.tabFontChanged) {
    bar.TabFont = dialog.tabFont;
    target.SetTabFont(dialog.tabFont);
    WriteFont(store, keys::TabFont, dialog.tabFont);
  }
  if (f.labelFontChanged) {
    bar.LabelFont = dialog.labelFont;
    target.SetLabelFont(dialog.labelFont);
    WriteFont(store, keys::LabelFont, dialog.labelFont);
  }
  if (f.floatingChanged) target.SetFloating(bar.Floating != 0, true);

  // One re-layout of the bar at most: the first of these that applies does it.
  if (f.tabModeChanged) {
    if (f.dockSideChanged) {
      target.SetTabMode(bar.TabMode > 0, false);
      target.SetDockSide(bar.DockSide, true);
    } else {
      target.SetTabMode(bar.TabMode > 0, true);
    }
  } else if (f.dockSideChanged || f.tabFontChanged) {
    // A new tab font may change the tabs' rows, hence the bar's thickness.
    target.SetDockSide(bar.DockSide, true);
  } else if (f.hideOnSingleChanged && !target.Floating() && target.DrawingCount() == 1) {
    // Hidden or shown again by laying the bar out: its thickness follows HideOnSingle.
    if (bar::IsAreaSide(bar.DockSide))
      target.RepositionDrawingArea();
    else
      target.RepositionCommandArea();
  } else if (f.previewsChanged) {
    target.LayOutStrip();
  } else if (f.colorsChanged) {
    target.RedrawStrip();
  }

  if (f.sortChanged) target.Resort();
  if (f.tabModeChanged) {
    if (bar.TabMode <= 0)
      target.RefreshAllPreviews();
    else
      target.ApplyTipSettings();
  } else if (f.tipsChanged) {
    target.ApplyTipSettings();
  }
  SaveSettings(store, bar);
  SaveExtraSettings(store, dialog.StoredExtras(), dialog.ChosenExtras());
  target.RecalcFrameLayout();
}

// ---------------------------------------------------------------- the running bar

void BarPreferencesTarget::ResetStripScroll() {
  if (actions_.resetStripScroll) actions_.resetStripScroll();
}

void BarPreferencesTarget::SetTabFont(const LogFontA& font) {
  if (actions_.setTabFont) actions_.setTabFont(font);
}

void BarPreferencesTarget::SetLabelFont(const LogFontA& font) {
  if (actions_.setLabelFont) actions_.setLabelFont(font);
}

long BarPreferencesTarget::DrawingCount() {
  try {
    return bar_.DrawingCount();
  } catch (const host::ComError&) {
    // No count, no single drawing: the bar is left where it is.
    return -1;
  }
}

void BarPreferencesTarget::RedrawStrip() {
  bar_.Windows().RedrawWindow(bar_.StripWindow(), nullptr, host::kRedrawNow);
}

void BarPreferencesTarget::Resort() {
  bar_.Strip().ResortEntries();
  bar_.Tabs().Resort();
  RedrawStrip();
  bar_.Windows().RedrawWindow(bar_.TabWindow(), nullptr, host::kRedrawNow);
}

void BarPreferencesTarget::RefreshAllPreviews() {
  try {
    bar::RefreshAllPreviews(bar_, actions_.updatePreview ? actions_.updatePreview : [](bar::DocEntry&) {});
  } catch (const host::ComError&) {
    // A host that can't walk its drawings leaves the old pictures.
  }
}

void BarPreferencesTarget::ApplyTipSettings() {
  if (actions_.applyTipSettings) actions_.applyTipSettings();
}

void BarPreferencesTarget::RecalcFrameLayout() { bar_.Windows().RecalcFrameLayout(bar_.Frame().frame); }

// ---------------------------------------------------------------- TLOPTIONS

void RunPreferences(bar::BarModel* bar, host::ArxModule& arx, const SettingsStore& store,
                    DisplayDefaults& display, int logPixelsY, BarWindowActions actions,
                    const PreferencesModal& modal) {
  if (!bar || !modal) return;
  BarPreferencesTarget target(*bar, arx, std::move(actions));
  PreferencesDialog dialog(bar->Settings(), ReadInt(store, keys::LastTab), display, logPixelsY);
  dialog.ShowExtras(ReadExtraSettings(store));
  const bool ok = modal(dialog, target);
  WriteInt(store, keys::LastTab, dialog.currentTab);
  if (!ok) return;
  ApplyPreferences(dialog, target, store);
  // The other additions read their settings where they are used; the session
  // recorder is made or dropped once, so it is told.
  if (host::TavletModule* module = host::CurrentModule(); module && module->Extras())
    module->Extras()->ReloadSettings();
}

}  // namespace tavlet::ui
