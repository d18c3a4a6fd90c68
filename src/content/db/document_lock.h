// A document lock held for a scope, as AcAxDocLock is: locked on construction,
// unlocked on leaving by any way, and only if the lock was granted.
#pragma once

#include "host/port/documents.h"

namespace tavlet::content::db {

class DocumentLock {
 public:
  DocumentLock(port::DocManager& documents, port::Document doc, long mode = port::kLockWrite)
      : documents_(documents), doc_(doc) {
    locked_ = doc && port::Succeeded(documents_.LockDocument(doc, mode));
  }
  ~DocumentLock() {
    if (locked_) documents_.UnlockDocument(doc_);
  }
  DocumentLock(const DocumentLock&) = delete;
  DocumentLock& operator=(const DocumentLock&) = delete;

  bool Locked() const { return locked_; }

 private:
  port::DocManager& documents_;
  port::Document doc_;
  bool locked_ = false;
};

}  // namespace tavlet::content::db
