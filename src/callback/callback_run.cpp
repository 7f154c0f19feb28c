#include "callback/callback_run.h"

namespace tarvik {

CallbackRun::CallbackRun(Model &model) : model_(model), context_(callbackContext(model.env())) {
  if (!context_) return;
  context_->model = static_cast<TVKmodel *>(&model);
  context_->abortCode = 0;
  context_->calls = context_->seconds = context_->progressTime = 0;
}

CallbackRun::~CallbackRun() {
  if (!context_) return;
  context_->model = nullptr;
}

CallbackRun::Attachment::Attachment(CallbackRun &run, SolveControl &control)
    : context_(run.context_) {
  if (!context_) return;
  context_->control = &control;
  if (context_->function) control.progress = &run;
}

CallbackRun::Attachment::~Attachment() {
  if (context_) context_->control = nullptr;
}

void CallbackRun::finish() {
  if (!context_) return;
  if (context_->calls > 0)
    model_.env().log("\nUser-callback calls %.0lf, time in user-callback %.2lf sec\n",
                     context_->calls, context_->seconds);
  if (context_->abortCode != 0) throw Error(context_->abortCode);
}

bool CallbackRun::onSimplex(const SimplexProgress &progress) {
  context_->simplex = &progress;
  const bool goesOn = invokeCallback(*context_, TVK_CB_SIMPLEX);
  context_->simplex = nullptr;
  return goesOn;
}

bool CallbackRun::onPresolve(const PresolveProgress &progress) {
  context_->presolve = &progress;
  const bool goesOn = invokeCallback(*context_, TVK_CB_PRESOLVE);
  context_->presolve = nullptr;
  return goesOn;
}

}  // namespace tarvik
