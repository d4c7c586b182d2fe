// What the controller last asked the local application to do.
#ifndef QXCM_API_REQUEST_RECORDS_H
#define QXCM_API_REQUEST_RECORDS_H

#include "QXCommMgr.h"
#include "platform/lock.h"

namespace qxcm {

/// One record of each kind, copied in and out whole under one lock. Any thread.
class RequestRecords {
 public:
  /// Stores a request; null takes the record back, so that fetching it fails until the next one is stored.
  template <class Body>
  void Store(const Body* body) {
    Guard guard(lock_);
    auto& record = Of<Body>();
    record.valid = body != nullptr;
    if (body != nullptr) record.body = *body;
  }

  /// Copies the request out and keeps it; false, with `body` untouched, when none is stored.
  template <class Body>
  bool Fetch(Body* body) {
    Guard guard(lock_);
    const auto& record = Of<Body>();
    if (record.valid) *body = record.body;
    return record.valid;
  }

 private:
  template <class Body>
  struct Record {
    bool valid = false;
    Body body = {};
  };
  struct All : Record<QCM_MSR_PARAMS>,
               Record<QCM_EXECUTED_PROCESS_INFO>,
               Record<QCM_TURN_PARAMS>,
               Record<QCM_TARGET_SEARCH_PARAMS>,
               Record<QCM_TARGET_SEARCH_RESULT>,
               Record<QCM_SAVED_IMAGE_PARAMS> {};

  template <class Body>
  Record<Body>& Of() QXCM_REQUIRES(lock_) {
    return records_;
  }

  Lock lock_;
  All records_ QXCM_GUARDED_BY(lock_);
};

// The sizes are part of the library's interface.
static_assert(sizeof(QCM_MSR_PARAMS) == 24, "measurement request");
static_assert(sizeof(QCM_EXECUTED_PROCESS_INFO) == 1040, "executed process");
static_assert(sizeof(QCM_TURN_PARAMS) == 48, "turn request");
static_assert(sizeof(QCM_TARGET_SEARCH_PARAMS) == 40, "target search request");
static_assert(sizeof(QCM_TARGET_SEARCH_RESULT) == 36, "target search result");
static_assert(sizeof(QCM_SAVED_IMAGE_PARAMS) == 532, "saved image request");

}  // namespace qxcm

#endif
