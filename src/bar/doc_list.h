// The bar's list of open drawings (the list operations of PreviewStrip), as
// portable logic: one DocEntry per open document, in the order shown, following
// the host's document events. The window side (lay-out, redraw, timers) goes
// through a PreviewStripView.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/port/documents.h"
#include "host/window_system.h"
#include "operations/drawing_path.h"

namespace tavlet::bar {

// One open drawing, in the fields' order of the bar's record.
struct DocEntry {
  DocEntry(port::Document doc, DrawingPath drawingPath) : document(doc), path(std::move(drawingPath)) {}

  std::vector<unsigned char> previewDib;  // packed 24-bit DIB; empty draws nothing
  host::WindowRect itemRect;              // where it was last painted: hit and tip area
  port::Document document;                // key; not owned
  int index = -1;                         // position, rewritten by layout and renaming
  DrawingPath path;
  std::string noImageText = "NO IMAGE\nAVAILABLE";
  int previewWidth = 1, previewHeight = 1;
  bool collapsed = false;
  bool previewLocked = false;
  bool paperSpace = false;
  bool darkBackground = false;
  bool modified = false;
  bool previewDirty = true;
  bool capturedFromScreen = false;

  // Unlocking makes the frozen picture stale.
  void SetPreviewLocked(bool locked) {
    if (previewLocked && !locked) previewDirty = true;
    previewLocked = locked;
  }
};

// The strip's window side, as the list needs it.
class PreviewStripView {
 public:
  virtual ~PreviewStripView() = default;
  virtual void LayOut() = 0;
  // RedrawWindow with RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW: the paint runs inside.
  virtual void Redraw() = 0;
  virtual void RedrawRect(const host::WindowRect& rect) = 0;
  virtual void StartTimer(unsigned id, unsigned milliseconds) = 0;
};

inline constexpr unsigned kActivationTimer = 100;  // capture after the host painted the view
inline constexpr unsigned kZoomTimer = 101;        // capture after the view stopped moving
inline constexpr unsigned kCaptureDelay = 800;

// The saved path of the document, or the host's file name for a drawing never
// saved. A failing host call counts as empty text.
std::string DocumentName(port::DocManager& documents, port::Document doc);

// a before b: by Name with SortBy 1, otherwise by Full, with _mbsicoll.
bool EntryBefore(const DocEntry* a, const DocEntry* b, int sortBy);

// Settings the list reads; the bar owns them and may change them.
struct DocListSettings {
  int SortBy = 0;
  int AutoUpdatePreviews = 1;
};

class DocList {
 public:
  DocList(port::DocManager& documents, FileSystem& files, PreviewStripView& view, const DocListSettings& settings);

  // Linear search; null `doc` is the MDI-active document. Null when not found or Busy.
  DocEntry* FindEntry(port::Document doc);
  // A second add of the same document makes a second entry (see the .cpp).
  void AddDocument(port::Document doc);
  void RemoveDocument(port::Document doc);
  void RenameDocument(port::Document doc, const DrawingPath& path);
  void SetDocumentModified(port::Document doc, bool modified);
  void MarkPreviewDirty(port::Document doc, bool force);
  void OnDocumentActivated(port::Document doc);
  void ResortEntries();
  // Position of the MDI-active document, or -1.
  int ActiveIndex();

  bool Busy() const { return busy_; }
  const std::vector<std::unique_ptr<DocEntry>>& Entries() const { return entries_; }

 private:
  port::Document MdiActive();
  void Sort();

  port::DocManager& documents_;
  FileSystem& files_;
  PreviewStripView& view_;
  const DocListSettings& settings_;
  std::vector<std::unique_ptr<DocEntry>> entries_;
  bool busy_ = false;
};

}  // namespace tavlet::bar
