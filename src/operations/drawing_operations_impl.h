// The guarded block and the walk shared by the operations' source files.
#pragma once

#include "operations/drawing_operations.h"

namespace tavlet::operations {

// False when the body was ended by a failure, which has been told by then.
template <class Body>
bool DrawingOperations::Guarded(const char* line, Body body) {
  try {
    body();
    return true;
  } catch (const host::ComError& error) {
    ShowBox(ErrorBoxText(error));
  } catch (...) {
    Print(line);
  }
  return false;
}

template <class Step>
void DrawingOperations::Walk(Step step) {
  const long last = services_.application.Documents().Count() - 1;
  for (long index = last; index >= 0; --index) {
    // A box of the previous step ran a modal loop, in which drawings may have
    // come and gone: nothing of a drawing is held across a step.
    host::AcadDocumentPtr document = services_.application.Documents().Item(index);
    if (document && !step(document)) break;
  }
}

}  // namespace tavlet::operations
