// One optimization as its user callback sees it, from the header to the closing lines: the bridge
// from the kernels' progress to invocations.
#pragma once

#include "callback/callback_context.h"

namespace tarvik {

class CallbackRun : public Progress {
 public:
  explicit CallbackRun(Model &model);
  ~CallbackRun() override;
  CallbackRun(const CallbackRun &) = delete;
  CallbackRun &operator=(const CallbackRun &) = delete;

  // While it lives, times and work are known and progress is reported.
  class Attachment {
   public:
    Attachment(CallbackRun &run, SolveControl &control);
    ~Attachment();
    Attachment(const Attachment &) = delete;
    Attachment &operator=(const Attachment &) = delete;

   private:
    CallbackContext *context_;
  };

  // Prints what the callback has cost and, if it has aborted the solve, throws its answer.
  void finish();

  bool onSimplex(const SimplexProgress &progress) override;
  bool onPresolve(const PresolveProgress &progress) override;

 private:
  Model &model_;
  CallbackContext *context_;  // null without a callback
};

}  // namespace tarvik
