// The bridge from the events of a mixed-integer search to invocations of the user callback.
#pragma once

#include "callback/callback_context.h"
#include "mip/mip_observer.h"
#include "opt/param_scope.h"

namespace tarvik {

class MipCallbacks final : public MipObserver {
 public:
  // The context must have a function; bridge is what presolve and the root relaxation report to.
  // What the improve-start phase changes is set in params while it lasts, for callbacks to see.
  MipCallbacks(CallbackContext &context, Progress &bridge, ParamScope &params)
      : context_(context), bridge_(bridge), params_(params) {}

  Progress *progress() override { return &bridge_; }
  void onPolling() override;
  void onProgress(const MipProgress &progress) override;
  bool onSolution(const MipProgress &progress, const Vec<double> &x, double objective) override;
  bool wantsNodes() const override { return true; }
  void onNode(const MipProgress &progress, const ObservedNode &node) override;

 private:
  void showImproveStart();
  void invoke(int where, const MipProgress &progress, MipCallbackValues &values);

  CallbackContext &context_;
  Progress &bridge_;
  ParamScope &params_;
  int solutionsTold_ = 0;
  bool improving_ = false;
};

}  // namespace tarvik
